// A library with a thread-local section makes Wine hang when it is loaded late into a process with several
// threads, and old versions of Windows crash. The compiler's start-up code brings such a section along unless
// somebody else defines this symbol; null says that a new thread needs no preparation.
#include <windows.h>

extern "C" {
extern const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback;
const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback = nullptr;
}
