// What the running processor and its operating system can do.
#pragma once

#include <string>

namespace xkl::core {

// Instruction sets in rising order. A level counts only when the operating system keeps its registers too.
enum class instruction_level : int { sse2, sse3, ssse3, sse4_1, sse4_2, avx, avx2, avx512, avx512_bf16 };

instruction_level processor_level() noexcept;
const char *level_name(instruction_level level) noexcept;
const std::string &processor_name();

} // namespace xkl::core
