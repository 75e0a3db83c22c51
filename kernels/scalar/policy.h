// How Boost.Math is called: errors are values, and a function computes in the type of its argument.
#pragma once

#include <boost/math/policies/policy.hpp>

namespace xkl::kernels::scalar {

namespace bp = boost::math::policies;
using quiet =
    bp::policy<bp::domain_error<bp::ignore_error>, bp::pole_error<bp::ignore_error>,
               bp::overflow_error<bp::ignore_error>, bp::underflow_error<bp::ignore_error>,
               bp::denorm_error<bp::ignore_error>, bp::evaluation_error<bp::ignore_error>,
               bp::rounding_error<bp::ignore_error>, bp::indeterminate_result_error<bp::ignore_error>,
               bp::promote_float<false>, bp::promote_double<false>>;

} // namespace xkl::kernels::scalar
