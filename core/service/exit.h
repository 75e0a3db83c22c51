// How the core ends the process: only when an entry or a kernel is missing, never for a bad argument.
#pragma once

namespace xkl::core {

// Calls the handler set by XKL_Set_Exit_Handler with the code, then ends the process, as nothing can go on.
[[noreturn]] void end_process(int code);

} // namespace xkl::core
