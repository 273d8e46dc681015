// Preloaded into the add-in: lets the n-th of certain calls fail, or ends the process there.
//
// FAILING_CALLS is "FAMILY:N:VARIANT". The families `sqlite` and `bus` are the calls that the add-in makes of
// SQLite and of sd-bus, `file` those by which SQLite changes the disk. The N-th call of the family fails,
// with the VARIANT-th of the codes that its function can give; 0 lets all of them pass. The family `kill` has
// the calls of `file`, and the process is killed ahead of the N-th.
//
// FAILING_CALLS_TRACE is a file that gets the name of each call of the family, and behind the one that failed
// its code.
//
// Only functions are here that can fail for a reason outside of the program: memory, disk, connection, what
// came in.
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sqlite3.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

namespace {

class Plan {
  public:
    Plan() {
        if (const char* text = std::getenv("FAILING_CALLS")) Read(text);
        // Programs that this one starts are none of ours.
        unsetenv("LD_PRELOAD");
        unsetenv("FAILING_CALLS");
    }

    // The code with which a call has to fail, 0 where it passes.
    int Next(const char* family, const char* function, std::initializer_list<int> codes) {
        if (family_ != family) return 0;
        const bool fails = ++count_ == number_;
        const int code = fails ? codes.begin()[variant_ % codes.size()] : 0;
        char line[128];
        const int length = fails ? std::snprintf(line, sizeof line, "%s %d\n", function, code)
                                 : std::snprintf(line, sizeof line, "%s\n", function);
        if (trace_ >= 0 && write(trace_, line, static_cast<std::size_t>(length)) < 0) _exit(97);
        return code;
    }

  private:
    void Read(const std::string& text) {
        const std::size_t first = text.find(':'), second = text.find(':', first + 1);
        family_ = text.substr(0, first);
        number_ = std::atol(text.c_str() + first + 1);
        variant_ = static_cast<std::size_t>(std::atol(text.c_str() + second + 1));
        if (const char* file = std::getenv("FAILING_CALLS_TRACE"))
            trace_ = open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }

    std::string family_;
    long count_ = 0, number_ = 0;
    std::size_t variant_ = 0;
    int trace_ = -1;
};

Plan& ThePlan() {
    static Plan plan;
    return plan;
}

// Read before anything can be called, so that no variable is left for the programs that are started.
const Plan& early = ThePlan();

// The code with which a call of SQLite to the operating system has to fail.
int NextOfFile(const char* function, std::initializer_list<int> codes) {
    if (ThePlan().Next("kill", function, {SIGKILL})) kill(getpid(), SIGKILL);
    return ThePlan().Next("file", function, codes);
}

// Addresses of the add-in itself: SQLite and sd-bus use functions of their own, which are not its calls.
struct Span {
    std::uintptr_t first = 0, last = 0;
};

int FindProgram(dl_phdr_info* info, std::size_t, void* result) {
    auto* span = static_cast<Span*>(result);
    span->first = info->dlpi_addr;
    for (int i = 0; i < info->dlpi_phnum; ++i)
        if (info->dlpi_phdr[i].p_type == PT_LOAD)
            span->last = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr + info->dlpi_phdr[i].p_memsz;
    return 1;  // the first is the program
}

bool IsProgram(const void* caller) {
    static const Span span = [] {
        Span found;
        dl_iterate_phdr(FindProgram, &found);
        return found;
    }();
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    return address >= span.first && address < span.last;
}

template <class Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// What sqlite3_errmsg has to say of the failure that was made up.
int pretended = 0;

}  // namespace

#define CODE(family, name, ...) \
    (IsProgram(__builtin_return_address(0)) ? ThePlan().Next(family, #name, {__VA_ARGS__}) : 0)
#define REAL(name) static auto* const real = Real<decltype(name)>(#name)

#define SQLITE_CALL(name, parameters, arguments, ...)                          \
    extern "C" int name parameters {                                           \
        REAL(name);                                                            \
        if ((pretended = CODE("sqlite", name, __VA_ARGS__))) return pretended; \
        return real arguments;                                                 \
    }

SQLITE_CALL(sqlite3_bind_double, (sqlite3_stmt * s, int i, double v), (s, i, v), SQLITE_NOMEM)
SQLITE_CALL(sqlite3_bind_int, (sqlite3_stmt * s, int i, int v), (s, i, v), SQLITE_NOMEM)
SQLITE_CALL(sqlite3_bind_int64, (sqlite3_stmt * s, int i, sqlite3_int64 v), (s, i, v), SQLITE_NOMEM)
SQLITE_CALL(sqlite3_bind_null, (sqlite3_stmt * s, int i), (s, i), SQLITE_NOMEM)
SQLITE_CALL(sqlite3_bind_text16, (sqlite3_stmt * s, int i, const void* t, int n, void (*d)(void*)),
            (s, i, t, n, d), SQLITE_NOMEM, SQLITE_TOOBIG)
SQLITE_CALL(sqlite3_close, (sqlite3 * d), (d), SQLITE_BUSY)
SQLITE_CALL(sqlite3_exec,
            (sqlite3 * d, const char* q, int (*c)(void*, int, char**, char**), void* x, char** e),
            (d, q, c, x, e), SQLITE_NOMEM, SQLITE_IOERR_READ, SQLITE_BUSY, SQLITE_CORRUPT)
SQLITE_CALL(sqlite3_prepare_v2, (sqlite3 * d, const char* q, int n, sqlite3_stmt** s, const char** t),
            (d, q, n, s, t), SQLITE_NOMEM, SQLITE_IOERR_READ, SQLITE_BUSY, SQLITE_CORRUPT)
SQLITE_CALL(sqlite3_step, (sqlite3_stmt * s), (s), SQLITE_NOMEM, SQLITE_IOERR_WRITE, SQLITE_BUSY,
            SQLITE_CORRUPT, SQLITE_FULL)

extern "C" int sqlite3_open_v2(const char* file, sqlite3** database, int flags, const char* vfs) {
    REAL(sqlite3_open_v2);
    const int code = CODE("sqlite", sqlite3_open_v2, SQLITE_NOMEM, SQLITE_CANTOPEN, SQLITE_IOERR);
    if (!code) return real(file, database, flags, vfs);
    // Without memory there is no handle; with any other failure there is one, to be closed.
    if (code == SQLITE_NOMEM)
        *database = nullptr;
    else
        real(file, database, flags, vfs);
    return code;
}

#define SQLITE_STRING(type, name, parameters, arguments)                      \
    extern "C" type name parameters {                                         \
        REAL(name);                                                           \
        if ((pretended = CODE("sqlite", name, SQLITE_NOMEM))) return nullptr; \
        return real arguments;                                                \
    }

SQLITE_STRING(const char*, sqlite3_column_name, (sqlite3_stmt * s, int i), (s, i))
SQLITE_STRING(const char*, sqlite3_column_table_name, (sqlite3_stmt * s, int i), (s, i))
SQLITE_STRING(const char*, sqlite3_column_origin_name, (sqlite3_stmt * s, int i), (s, i))
SQLITE_STRING(const void*, sqlite3_column_text16, (sqlite3_stmt * s, int i), (s, i))

extern "C" const char* sqlite3_errmsg(sqlite3* database) {
    REAL(sqlite3_errmsg);
    return pretended ? sqlite3_errstr(pretended) : real(database);
}

extern "C" int sqlite3_errcode(sqlite3* database) {
    REAL(sqlite3_errcode);
    return pretended ? pretended : real(database);
}

static bool IsSqlite(const void* caller) {
    Dl_info info{};
    return dladdr(caller, &info) && std::strstr(info.dli_fname, "libsqlite3");
}

#define FILE_CALL(type, name, parameters, arguments, ...)                       \
    extern "C" type name parameters {                                           \
        REAL(name);                                                             \
        const bool isSqlite = IsSqlite(__builtin_return_address(0));            \
        if (const int code = isSqlite ? NextOfFile(#name, {__VA_ARGS__}) : 0) { \
            errno = code;                                                       \
            return -1;                                                          \
        }                                                                       \
        return real arguments;                                                  \
    }

FILE_CALL(ssize_t, pwrite64, (int f, const void* b, size_t n, off64_t o), (f, b, n, o), EIO, ENOSPC)
FILE_CALL(int, fdatasync, (int f), (f), EIO)
FILE_CALL(int, ftruncate64, (int f, off64_t n), (f, n), EIO)
FILE_CALL(int, unlink, (const char* p), (p), EACCES)

#define BUS_CALL(name, parameters, arguments, ...)                         \
    extern "C" int name parameters {                                       \
        REAL(name);                                                        \
        if (const int code = CODE("bus", name, __VA_ARGS__)) return -code; \
        return real arguments;                                             \
    }

using Message = sd_bus_message;

BUS_CALL(sd_bus_open_user, (sd_bus * *b), (b), ENOMEM, ECONNREFUSED)
BUS_CALL(sd_bus_add_filter, (sd_bus * b, sd_bus_slot** s, sd_bus_message_handler_t h, void* c), (b, s, h, c),
         ENOMEM)
BUS_CALL(sd_bus_add_match_async,
         (sd_bus * b, sd_bus_slot** s, const char* m, sd_bus_message_handler_t h, sd_bus_message_handler_t i,
          void* c),
         (b, s, m, h, i, c), ENOMEM, ENOTCONN)
BUS_CALL(sd_bus_call_async,
         (sd_bus * b, sd_bus_slot** s, Message* m, sd_bus_message_handler_t h, void* c, uint64_t t),
         (b, s, m, h, c, t), ENOMEM, ENOTCONN, ENOBUFS)
BUS_CALL(sd_bus_get_unique_name, (sd_bus * b, const char** n), (b, n), ENOTCONN, ENOMEM)
BUS_CALL(sd_bus_process, (sd_bus * b, Message** m), (b, m), ENOMEM, ECONNRESET, EIO)
BUS_CALL(sd_bus_release_name_async,
         (sd_bus * b, sd_bus_slot** s, const char* n, sd_bus_message_handler_t h, void* c), (b, s, n, h, c),
         ENOMEM, ENOTCONN)
BUS_CALL(sd_bus_request_name, (sd_bus * b, const char* n, uint64_t f), (b, n, f), ENOMEM, ENOTCONN, EEXIST)
BUS_CALL(sd_bus_send, (sd_bus * b, Message* m, uint64_t* c), (b, m, c), ENOMEM, ENOTCONN, ENOBUFS)
BUS_CALL(sd_bus_message_append_basic, (Message * m, char t, const void* p), (m, t, p), ENOMEM)
BUS_CALL(sd_bus_message_append_string_space, (Message * m, size_t n, char** p), (m, n, p), ENOMEM)
BUS_CALL(sd_bus_message_open_container, (Message * m, char t, const char* c), (m, t, c), ENOMEM)
BUS_CALL(sd_bus_message_close_container, (Message * m), (m), ENOMEM)
BUS_CALL(sd_bus_message_enter_container, (Message * m, char t, const char* c), (m, t, c), EBADMSG, ENOMEM)
BUS_CALL(sd_bus_message_exit_container, (Message * m), (m), EBADMSG)
BUS_CALL(sd_bus_message_peek_type, (Message * m, char* t, const char** c), (m, t, c), EBADMSG, ENOMEM)
BUS_CALL(sd_bus_message_read_basic, (Message * m, char t, void* p), (m, t, p), EBADMSG)
BUS_CALL(sd_bus_message_new_method_call,
         (sd_bus * b, Message** m, const char* d, const char* p, const char* i, const char* n),
         (b, m, d, p, i, n), ENOMEM, ENOTCONN)
BUS_CALL(sd_bus_message_new_method_error, (Message * c, Message** m, const sd_bus_error* e), (c, m, e),
         ENOMEM)
BUS_CALL(sd_bus_message_new_method_return, (Message * c, Message** m), (c, m), ENOMEM)

#define BUS_VARIADIC(function, withList, code)                                \
    extern "C" int function(Message* message, const char* types, ...) {       \
        if (const int failure = CODE("bus", function, code)) return -failure; \
        va_list arguments;                                                    \
        va_start(arguments, types);                                           \
        const int result = withList(message, types, arguments);               \
        va_end(arguments);                                                    \
        return result;                                                        \
    }

BUS_VARIADIC(sd_bus_message_append, sd_bus_message_appendv, ENOMEM)
BUS_VARIADIC(sd_bus_message_read, sd_bus_message_readv, EBADMSG)
