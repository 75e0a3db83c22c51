// The distributions' transforms of this instruction set.
#include "vsl/distributions/transforms.h"

#include "vsl/distributions/transforms/candidates.h"
#include "vsl/distributions/transforms/circle.h"
#include "vsl/distributions/transforms/exponential.h"
#include "vsl/distributions/transforms/gaussian.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
constexpr vsl::transforms<R> all = {
    .exponential = one_each<exponential_transform<R>>,
    .laplace = one_each<laplace_transform<R>>,
    .weibull = one_each<weibull_transform<R>>,
    .rayleigh = one_each<rayleigh_transform<R>>,
    .gumbel = one_each<gumbel_transform<R>>,
    .cauchy = one_each<cauchy_transform<R>>,
    .box_muller = from_pairs<box_muller_transform<R>>,
    .box_muller2 = pairs_from_pairs<box_muller_transform<R>>,
    .normal_inverse = one_each<normal_quantile_transform<R>>,
    .shifted_exp = one_each<shifted_exp_transform<R>>,
};

} // namespace XKL_ISA
} // namespace xkl::kernels

namespace xkl::vsl::XKL_ISA {

extern const transforms<double> double_transforms = kernels::all<double>;
extern const transforms<float> float_transforms = kernels::all<float>;
extern const candidate_transforms candidates = {
    .gamma = kernels::from_pairs<kernels::gamma_candidates>,
    .beta = kernels::from_pairs<kernels::beta_candidates>,
};

} // namespace xkl::vsl::XKL_ISA
