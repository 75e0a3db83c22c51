// What the thread sanitizer must know about the tests of the core; linked into each of them.

// Children of these programs start threads too.
extern "C" const char *__tsan_default_options()
{
    return "die_after_fork=0";
}

// The kernel library is not instrumented, so that the sanitizer does not see how its threads hand work to
// each other. What it sees is their memset, when they clear a result.
extern "C" const char *__tsan_default_suppressions()
{
    return "race:_beta_\nrace:scal_k_\n";
}
