/* The entries that the null core answers: tracing is off. */
#include <stddef.h>
#include <stdint.h>

static int32_t verbose_off = 0;

int32_t *xkl_serv_verbose_mode(void)
{
    return &verbose_off;
}

/* As the default core does: frames store their handler here. */
void xkl_serv_set_xerbla_interface(void (*handler)(void));
struct {
    void (*handler)(void);
    void (*setter)(void (*)(void));
} xkl_serv_xerbla_registration = {NULL, xkl_serv_set_xerbla_interface};

int xkl_serv_snprintf_s(char *buffer, size_t size, size_t most, const char *format, ...)
{
    (void)buffer, (void)size, (void)most, (void)format;
    return 0;
}
int xkl_serv_sprintf_s(char *buffer, size_t size, const char *format, ...)
{
    (void)buffer, (void)size, (void)format;
    return 0;
}
size_t xkl_serv_strnlen_s(const char *text, size_t most)
{
    (void)text;
    return most;
}
int xkl_serv_printf_s(const char *format, ...)
{
    (void)format;
    return 0;
}
int xkl_serv_getenv(const char *name, char *value, int size)
{
    (void)name, (void)value, (void)size;
    return 0;
}
void xkl_serv_default_xerbla(void) {}
void xkl_serv_set_progress_interface(void) {}
int32_t xkl_serv_default_progress(void)
{
    return 0;
}
int32_t xkl_serv_default_pardiso_pivot(void)
{
    return 0;
}
int xkl_serv_sprintf_char_s(char *buffer, size_t size, const char *format, ...)
{
    (void)buffer, (void)size, (void)format;
    return 0;
}
const char *xkl_serv_get_msg(int number, int reserved)
{
    (void)number, (void)reserved;
    return "";
}
void *xkl_serv_get_mpi_wrappers(void)
{
    return NULL;
}
