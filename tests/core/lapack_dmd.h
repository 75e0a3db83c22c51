// Calls of ?GEDMD and ?GEDMDQ with arguments that are right until a test changes them, and trajectories of
// operators that are known.
#pragma once

#include "lapack/call.h"
#include "lapack_matrix.h"
#include "xkl.h"

namespace lapack_tests {

using xkl::core::call;

/// The operator A = V*Lambda*inv(V) restricted to the range of V, with what is needed to check its pairs.
template <class T>
struct known_operator {
    using complex = std::complex<real_of<T>>;
    matrix<T> a;
    std::vector<complex> values;

    /// In real types the eigenvalues come in conjugate pairs, but for the last one of an odd count.
    known_operator(int64_t m, int64_t count) : a(m, m)
    {
        matrix<T> block(count, count);
        for (int64_t i = 0; i < count; ++i) {
            const real_of<T> size = 1 - real_of<T>(0.06) * static_cast<real_of<T>>(i);
            const real_of<T> angle = real_of<T>(0.4) + real_of<T>(0.5) * static_cast<real_of<T>>(i);
            const complex value = std::polar(size, angle);
            if constexpr (is_complex<T>) {
                values.push_back(value);
                block(i, i) = value;
            } else if (i + 1 < count) {
                values.insert(values.end(), {value, std::conj(value)});
                block(i, i) = block(i + 1, i + 1) = value.real();
                block(i, i + 1) = value.imag();
                block(i + 1, i) = -value.imag();
                ++i;
            } else {
                values.push_back(size);
                block(i, i) = size;
            }
        }
        basis = orthonormal(m, count);
        a = basis * block * adjoint(basis);
    }

    /// Snapshots x, A*x, A*A*x...
    matrix<T> trajectory(int64_t snapshots) const
    {
        matrix<T> result(a.rows, snapshots), x = basis * matrix<T>::random(basis.columns, 1);
        for (int64_t j = 0; j < snapshots; ++j, x = a * x)
            std::copy(x.elements.begin(), x.elements.end(), &result(0, j));
        return result;
    }

    /// How far the values are from those of the operator, at most.
    double distance(const std::vector<complex> &found) const
    {
        double largest = 0;
        for (const complex &value : values) {
            double nearest = INFINITY;
            for (const complex &each : found)
                nearest = std::min<double>(nearest, std::abs(each - value));
            largest = std::max(largest, nearest);
        }
        return largest;
    }

  private:
    matrix<T> basis{0, 0};

    static matrix<T> orthonormal(int64_t m, int64_t count)
    {
        matrix<T> q = matrix<T>::random(m, count);
        for (int64_t j = 0; j < count; ++j)
            for (int pass = 0; pass < 2; ++pass) {
                const auto done = columns(q, 0, j), column = columns(q, j, j + 1);
                const auto rest = column - done * (adjoint(done) * column);
                const auto size = std::sqrt(std::real((adjoint(rest) * rest)(0, 0)));
                for (int64_t i = 0; i < m; ++i)
                    q(i, j) = rest(i, 0) / size;
            }
        return q;
    }
};

/// What both routines have.
template <class T>
struct dmd_arguments {
    using real = real_of<T>;
    using complex = std::complex<real>;
    char jobs = 'N', jobz = 'V', jobr = 'R', jobf = 'N';
    int64_t whtsvd = 1, m, n, nrnk = -1, k = -1, info = -1000;
    real tol;
    matrix<T> x, y, z, b, w, s;
    int64_t ldx, ldy, ldz, ldb, ldw, lds;
    std::vector<T> eigs;
    std::vector<real> imeig, res;
    std::vector<T> work{2};
    std::vector<real> rwork{1};
    std::vector<int64_t> iwork{1};
    int64_t lwork = -1, lrwork = -1, liwork = -1;

    dmd_arguments(int64_t state, int64_t count, int64_t rows, int64_t pairs)
        : m(state), n(count), tol(static_cast<real>(state) * 10 * std::numeric_limits<real>::epsilon()),
          x(rows, pairs + 1), y(rows, pairs + 1), z(state, pairs), b(rows, pairs), w(pairs, pairs),
          s(pairs, pairs), ldx(rows), ldy(rows), ldz(state), ldb(rows), ldw(pairs), lds(pairs),
          eigs(size(pairs)), imeig(size(pairs)), res(size(pairs))
    {
        work.resize(2);
    }

    /// The workspaces become as long as the last query has asked; `best` is the second length.
    void take_workspaces(bool best)
    {
        lwork = static_cast<int64_t>(std::real(work[best ? 1 : 0]));
        liwork = iwork[0];
        lrwork = static_cast<int64_t>(rwork[0]);
        work.assign(size(lwork), T(0));
        iwork.assign(size(liwork), 0);
        rwork.assign(size(std::max<int64_t>(1, lrwork)), 0);
    }

    std::vector<complex> values() const
    {
        std::vector<complex> result;
        for (size_t i = 0; i < size(k); ++i)
            if constexpr (is_complex<T>)
                result.push_back(eigs[i]);
            else
                result.emplace_back(eigs[i], imeig[i]);
        return result;
    }

    /// Vectors as complex ones, k of them, however the type keeps them.
    matrix<complex> vectors(const matrix<T> &from) const
    {
        matrix<complex> result(from.rows, k);
        for (int64_t j = 0; j < k; ++j)
            for (int64_t i = 0; i < from.rows; ++i) {
                const real imaginary = is_complex<T> ? 0 : imeig[size(j)];
                if (imaginary == 0)
                    result(i, j) = from(i, j);
                else
                    result(i,
                           j) = {std::real(from(i, imaginary > 0 ? j : j - 1)),
                                 (imaginary > 0 ? 1 : -1) * std::real(from(i, imaginary > 0 ? j + 1 : j))};
            }
        return result;
    }

    static size_t size(int64_t count) { return static_cast<size_t>(count); }
};

template <class T>
struct gedmd_call : dmd_arguments<T> {
    gedmd_call(const matrix<T> &snapshots, const matrix<T> &next)
        : dmd_arguments<T>(snapshots.rows, snapshots.columns, snapshots.rows, snapshots.columns)
    {
        this->x = snapshots;
        this->y = next;
    }
    void operator()()
    {
        auto &c = *this;
        const auto routine = pick<T>(sgedmd_, dgedmd_, cgedmd_, zgedmd_);
        if constexpr (is_complex<T>)
            call(routine, c.jobs, c.jobz, c.jobr, c.jobf, c.whtsvd, c.m, c.n, c.x.data(), c.ldx, c.y.data(),
                 c.ldy, c.nrnk, c.tol, &c.k, c.eigs.data(), c.z.data(), c.ldz, c.res.data(), c.b.data(),
                 c.ldb, c.w.data(), c.ldw, c.s.data(), c.lds, c.work.data(), c.lwork, c.rwork.data(),
                 c.lrwork, c.iwork.data(), c.liwork, &c.info);
        else
            call(routine, c.jobs, c.jobz, c.jobr, c.jobf, c.whtsvd, c.m, c.n, c.x.data(), c.ldx, c.y.data(),
                 c.ldy, c.nrnk, c.tol, &c.k, c.eigs.data(), c.imeig.data(), c.z.data(), c.ldz, c.res.data(),
                 c.b.data(), c.ldb, c.w.data(), c.ldw, c.s.data(), c.lds, c.work.data(), c.lwork,
                 c.iwork.data(), c.liwork, &c.info);
    }
};

template <class T>
struct gedmdq_call : dmd_arguments<T> {
    char jobq = 'N', jobt = 'N';
    matrix<T> f;
    int64_t ldf;

    explicit gedmdq_call(const matrix<T> &snapshots)
        : dmd_arguments<T>(snapshots.rows, snapshots.columns, std::min(snapshots.rows, snapshots.columns),
                           snapshots.columns - 1),
          f(snapshots), ldf(snapshots.rows)
    {
    }
    void operator()()
    {
        auto &c = *this;
        const auto routine = pick<T>(sgedmdq_, dgedmdq_, cgedmdq_, zgedmdq_);
        if constexpr (is_complex<T>)
            call(routine, c.jobs, c.jobz, c.jobr, c.jobq, c.jobt, c.jobf, c.whtsvd, c.m, c.n, c.f.data(),
                 c.ldf, c.x.data(), c.ldx, c.y.data(), c.ldy, c.nrnk, c.tol, &c.k, c.eigs.data(),
                 c.z.data(), c.ldz, c.res.data(), c.b.data(), c.ldb, c.w.data(), c.ldw, c.s.data(), c.lds,
                 c.work.data(), c.lwork, c.rwork.data(), c.lrwork, c.iwork.data(), c.liwork, &c.info);
        else
            call(routine, c.jobs, c.jobz, c.jobr, c.jobq, c.jobt, c.jobf, c.whtsvd, c.m, c.n, c.f.data(),
                 c.ldf, c.x.data(), c.ldx, c.y.data(), c.ldy, c.nrnk, c.tol, &c.k, c.eigs.data(),
                 c.imeig.data(), c.z.data(), c.ldz, c.res.data(), c.b.data(), c.ldb, c.w.data(), c.ldw,
                 c.s.data(), c.lds, c.work.data(), c.lwork, c.iwork.data(), c.liwork, &c.info);
    }
};

} // namespace lapack_tests
