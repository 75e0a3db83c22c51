// How Boost.Math is called: errors are values, and a function computes in the type of its argument. Included
// ahead of its other headers.
#pragma once

// Some of its functions call others without the policy that they were called with. These would throw, or end
// the process by an assertion, for orders in the thousands.
#define BOOST_DISABLE_ASSERTS
#define BOOST_MATH_DOMAIN_ERROR_POLICY ignore_error
#define BOOST_MATH_POLE_ERROR_POLICY ignore_error
#define BOOST_MATH_OVERFLOW_ERROR_POLICY ignore_error
#define BOOST_MATH_EVALUATION_ERROR_POLICY ignore_error
#define BOOST_MATH_ROUNDING_ERROR_POLICY ignore_error

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
