#include "storage_model.h"

#include "xkl_lapack.h"

#include <algorithm>
#include <map>

namespace {

/// Packed triangles hold their elements one after another, diagonal included.
std::vector<int64_t> packed_places(const stored_matrix &a)
{
    std::vector<int64_t> places(static_cast<std::size_t>(a.n * a.n), -1);
    int64_t next = 0;
    for (int64_t outer = 0; outer < a.n; ++outer)
        for (int64_t inner = 0; inner < a.n; ++inner) {
            const int64_t i = a.by_columns() ? inner : outer, j = a.by_columns() ? outer : inner;
            if ((a.uplo | 32) == 'u' ? i <= j : i >= j)
                places[static_cast<std::size_t>(i * a.n + j)] = next++;
        }
    return places;
}

/// LAPACK's own conversion tells where it puts the elements by columns; by rows, the rectangle's rows are
/// lines.
std::vector<int64_t> rectangle_places(const stored_matrix &a)
{
    const auto count = static_cast<std::size_t>(a.n * a.n);
    std::vector<double> full(count), rectangle(static_cast<std::size_t>(a.n * (a.n + 1) / 2));
    for (std::size_t k = 0; k < count; ++k)
        full[k] = static_cast<double>(k);
    const char transr = (a.transr | 32) == 'n' ? 'N' : 'T';
    int64_t info = 0;
    dtrttf(&transr, &a.uplo, &a.n, full.data(), &a.n, rectangle.data(), &info);
    int64_t rows = a.n % 2 == 0 ? a.n + 1 : a.n, columns = (a.n + 1) / 2;
    if (transr == 'T')
        std::swap(rows, columns);
    std::vector<int64_t> places(count, -1);
    for (int64_t r = 0; r < rows; ++r)
        for (int64_t c = 0; c < columns; ++c) {
            const auto k = static_cast<int64_t>(rectangle[static_cast<std::size_t>(r + c * rows)]);
            const int64_t i = k % a.n, j = k / a.n;
            places[static_cast<std::size_t>(i * a.n + j)] = a.by_columns() ? r + c * rows : r * columns + c;
        }
    return places;
}

} // namespace

int64_t stored_matrix::line() const
{
    if (scheme == "gb" || scheme == "tb")
        return by_columns() ? kl + ku + 1 : n;
    return by_columns() ? m : n;
}

bool stored_matrix::holds(int64_t i, int64_t j) const
{
    if (scheme == "ge")
        return true;
    if (scheme == "hs")
        return i <= j + 1;
    const bool upper = (uplo | 32) == 'u';
    if (scheme == "gb" || scheme == "tb")
        return j - i <= ku && i - j <= kl && !(scheme == "tb" && i == j && (diag | 32) == 'u');
    // The triangle of a trapezoid ends in the last corner or starts in the first.
    const int64_t from_diagonal = scheme == "tz" && (direct | 32) == 'b' ? (i - m) - (j - n) : i - j;
    if (from_diagonal == 0)
        return (diag | 32) == 'n';
    return upper == (from_diagonal < 0);
}

std::vector<int64_t> stored_matrix::places() const
{
    std::vector<int64_t> result(static_cast<std::size_t>(m * n), -1);
    if (n > 0 && scheme == "tp")
        result = packed_places(*this);
    if (n > 0 && scheme == "tf")
        result = rectangle_places(*this);
    const bool band = scheme == "gb" || scheme == "tb", dense = scheme != "tp" && scheme != "tf";
    for (int64_t i = 0; i < m; ++i)
        for (int64_t j = 0; j < n; ++j) {
            int64_t &place = result[static_cast<std::size_t>(i * n + j)];
            const int64_t row = band ? ku + i - j : i; // of the array
            if (!holds(i, j))
                place = -1;
            else if (dense)
                place = by_columns() ? row + j * ld : row * ld + j;
        }
    return result;
}

int64_t stored_matrix::extent() const
{
    if (scheme == "tp" || scheme == "tf")
        return n * (n + 1) / 2;
    const auto all = places();
    return all.empty() ? 0 : *std::max_element(all.begin(), all.end()) + 1;
}

std::string stored_matrix::text() const
{
    std::string text = scheme + (by_columns() ? " by columns" : " by rows");
    text += std::string(", direct ") + direct + ", transr " + transr + ", uplo " + uplo + ", diag " + diag;
    for (const auto &[name, value] :
         std::map<std::string, int64_t>{{"m", m}, {"n", n}, {"kl", kl}, {"ku", ku}, {"ld", ld}})
        text += ", " + name + " " + std::to_string(value);
    return text;
}

std::string scheme_of(const std::string &helper)
{
    static const std::map<std::string, std::string> alike = {
        {"GE", "ge"}, {"GG", "ge"}, {"HS", "hs"}, {"TR", "tr"}, {"PO", "tr"}, {"SY", "tr"}, {"HE", "tr"},
        {"TZ", "tz"}, {"GB", "gb"}, {"TB", "tb"}, {"PB", "tb"}, {"SB", "tb"}, {"HB", "tb"}, {"TP", "tp"},
        {"PP", "tp"}, {"SP", "tp"}, {"HP", "tp"}, {"TF", "tf"}, {"PF", "tf"}};
    const auto found = alike.find(helper.substr(1, 2));
    return found == alike.end() ? "" : found->second;
}
