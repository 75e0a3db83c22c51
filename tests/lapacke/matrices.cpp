#include "helper_call.h"

namespace {

struct shape {
    int64_t m, n, kl, ku;
};

/// Around the widths of registers and the sizes from which helpers go another way; more rows, more columns,
/// and bands wider than the matrix.
std::vector<shape> shapes_for(const routine_row &row, const std::string &scheme)
{
    std::vector<shape> shapes;
    if (scheme == "gb") {
        shapes = {{1, 1, 0, 0}, {5, 5, 1, 2}, {7, 4, 2, 1},   {4, 9, 0, 3},    {6, 6, 5, 5},
                  {9, 9, 0, 0}, {2, 3, 4, 6}, {33, 35, 4, 3}, {70, 66, 10, 33}};
    } else if (scheme == "tb") {
        for (const shape &each :
             {shape{1, 0, 0, 0}, {5, 0, 0, 0}, {5, 2, 0, 0}, {4, 6, 0, 0}, {33, 7, 0, 0}, {66, 40, 0, 0}})
            shapes.push_back({each.m, each.m, each.n, each.n}); // m: the side, n: the width
    } else if (has_argument(row, "m")) {
        shapes = {{1, 1, 0, 0},   {1, 5, 0, 0},   {5, 1, 0, 0},   {3, 4, 0, 0},   {4, 3, 0, 0},
                  {7, 9, 0, 0},   {4, 5, 0, 0},   {5, 4, 0, 0},   {16, 17, 0, 0}, {33, 31, 0, 0},
                  {65, 20, 0, 0}, {20, 66, 0, 0}, {64, 64, 0, 0}, {1, 70, 0, 0},  {67, 72, 0, 0}};
    } else {
        for (const int64_t n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 66})
            shapes.push_back({n, n, 0, 0});
    }
    return shapes;
}

/// One matrix for each value that an argument can have, or the matrices as they are if there is no such
/// argument
template <class T>
void vary(std::vector<stored_matrix> &matrices, const routine_row &row, const char *name,
          T stored_matrix::*member, std::initializer_list<T> values)
{
    if (!has_argument(row, name))
        return;
    std::vector<stored_matrix> varied;
    for (const stored_matrix &each : matrices)
        for (const T value : values) {
            varied.push_back(each);
            varied.back().*member = value;
        }
    matrices = varied;
}

} // namespace

std::vector<stored_matrix> matrices_for(const routine_row &row)
{
    std::vector<stored_matrix> matrices;
    const std::string scheme = scheme_of(row.name);
    for (const shape &each : shapes_for(row, scheme))
        matrices.push_back({.scheme = scheme, .m = each.m, .n = each.n, .kl = each.kl, .ku = each.ku});
    vary(matrices, row, "layout", &stored_matrix::layout, {101, 102});
    vary(matrices, row, "direct", &stored_matrix::direct, {'F', 'b'});
    vary(matrices, row, "transr", &stored_matrix::transr, {'n', 'T', 'c'});
    vary(matrices, row, "uplo", &stored_matrix::uplo, {'u', 'L'});
    vary(matrices, row, "diag", &stored_matrix::diag, {'N', 'u'});
    int64_t gap = 0;
    for (stored_matrix &each : matrices) {
        if (scheme == "tb")
            ((each.uplo | 32) == 'u' ? each.kl : each.ku) = 0;
        each.ld = each.line() + (gap++ % 3 == 0 ? 3 : 0);
    }
    return matrices;
}
