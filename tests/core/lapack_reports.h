// What the program's own error handler has been told.
#pragma once

#include "xkl.h"

#include <gtest/gtest.h>

#include <string>

namespace lapack_tests {

class reports : public testing::Test {
  protected:
    static inline std::string name;
    static inline int64_t position;

    void SetUp() override
    {
        forget();
        previous_ = xkl_set_xerbla([](const char *text, const int64_t *place, int64_t length) {
            name.assign(text, static_cast<size_t>(length));
            position = *place;
        });
    }
    void TearDown() override { xkl_set_xerbla(previous_); }

    static void forget()
    {
        name.clear();
        position = 0;
    }

  private:
    xkl_xerbla_handler previous_ = nullptr;
};

} // namespace lapack_tests
