// Preloaded into a program: lets the n-th of certain calls fail, or kills the process ahead of it.
//
// FAILING_CALLS is "FAMILY:N". The families `sqlite` and `bus` are the calls that the add-in makes of SQLite
// and of sd-bus, `file` those by which SQLite changes the disk; the N-th call of the family fails, 0 lets all
// pass. With `kill` the process is killed ahead of the N-th call of `file`, with `full` the disk is full from
// the N-th on. FAILING_CALLS_TRACE is a file that gets the name of each call of the family, with the code
// after that of the one that failed.
// Only functions are here that can fail for a reason outside of the program.
#include <dlfcn.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

const std::string plan = std::getenv("FAILING_CALLS"), wanted = plan.substr(0, plan.find(':'));
const unsigned long number = std::strtoul(plan.c_str() + plan.find(':') + 1, nullptr, 10);
const bool kills = wanted == "kill", isFull = wanted == "full";
const int trace = open(std::getenv("FAILING_CALLS_TRACE"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
// Programs that this one starts are not meant.
[[maybe_unused]] const int isAlone = unsetenv("LD_PRELOAD");
unsigned long count = 0;
int pretended = 0;  // what SQLite has to say of a failure that was made up

// Whether an address lies in a file. SQLite and sd-bus also call themselves, which are no calls of the
// add-in.
bool IsIn(const char* file, const void* caller) {
    Dl_info info{};
    return dladdr(caller, &info) && std::strstr(info.dli_fname, file);
}

// The code with which a call has to fail, 0 where it passes.
int Next(const char* name, std::initializer_list<int> codes, const void* caller) {
    const bool isSqlite = !std::strncmp(name, "sqlite3_", 8), isBus = !std::strncmp(name, "sd_bus_", 7);
    const std::string family = isSqlite ? "sqlite" : isBus ? "bus" : "file";
    if (family != (kills || isFull ? "file" : wanted)) return 0;
    if (!IsIn(family == "file" ? "libsqlite3" : "horalink", caller)) return 0;
    ++count;
    const bool fails = isFull ? number && count >= number : count == number;
    const bool hasRoom = isFull && std::strcmp(name, "pwrite64");
    const int code = !fails || hasRoom ? 0 : isFull ? ENOSPC : codes.begin()[number % codes.size()];
    if (trace >= 0 && dprintf(trace, code ? "%s %d\n" : "%s\n", name, code) < 0) _exit(97);
    if (fails && kills) kill(getpid(), SIGKILL);
    return code;
}

// What a function gives that fails with a code: a text is missing then.
long Failed(const char* name, int code) {
    if (!std::strncmp(name, "sd_bus_", 7)) return -code;
    if (std::strncmp(name, "sqlite3_", 8)) return errno = code, -1;
    pretended = code;
    return std::strncmp(name, "sqlite3_column_", 15) ? code : 0;
}

}  // namespace

// Each is called with what the registers hold, whatever its parameters are: the calling conventions of the
// machines that Debian runs on pass six whole numbers or pointers that way.
#define REAL(name) \
    static const auto real = reinterpret_cast<long (*)(long, long, ...)>(dlsym(RTLD_NEXT, #name))
#define CALL(name, ...)                                                                         \
    extern "C" long Hook_##name(long a, long b, long c, long d, long e, long f) __asm__(#name); \
    long Hook_##name(long a, long b, long c, long d, long e, long f) {                          \
        REAL(name);                                                                             \
        const int code = Next(#name, {__VA_ARGS__}, __builtin_return_address(0));               \
        return code ? Failed(#name, code) : real(a, b, c, d, e, f);                             \
    }

CALL(sqlite3_bind_int64, SQLITE_NOMEM)
CALL(sqlite3_bind_text16, SQLITE_NOMEM, SQLITE_TOOBIG)
CALL(sqlite3_open_v2, SQLITE_NOMEM)
CALL(sqlite3_close, SQLITE_BUSY)
CALL(sqlite3_exec, SQLITE_NOMEM, SQLITE_IOERR_READ, SQLITE_BUSY, SQLITE_CORRUPT)
CALL(sqlite3_prepare_v2, SQLITE_NOMEM, SQLITE_IOERR_READ, SQLITE_BUSY, SQLITE_CORRUPT)
CALL(sqlite3_step, SQLITE_NOMEM, SQLITE_IOERR_WRITE, SQLITE_BUSY, SQLITE_CORRUPT, SQLITE_FULL)
CALL(sqlite3_column_name, SQLITE_NOMEM)
CALL(sqlite3_column_table_name, SQLITE_NOMEM)
CALL(sqlite3_column_origin_name, SQLITE_NOMEM)
CALL(sqlite3_column_text16, SQLITE_NOMEM)

CALL(pwrite64, EIO, ENOSPC)
CALL(fdatasync, EIO)
CALL(unlink, EACCES)

CALL(sd_bus_open_user, ENOMEM, ECONNREFUSED)
CALL(sd_bus_add_filter, ENOMEM)
CALL(sd_bus_add_match_async, ENOMEM, ENOTCONN)
CALL(sd_bus_call_async, ENOMEM, ENOTCONN, ENOBUFS)
CALL(sd_bus_get_unique_name, ENOTCONN, ENOMEM)
CALL(sd_bus_process, ENOMEM, ECONNRESET, EIO)
CALL(sd_bus_release_name_async, ENOMEM, ENOTCONN)
CALL(sd_bus_request_name, ENOMEM, ENOTCONN, EEXIST)
CALL(sd_bus_send, ENOMEM, ENOTCONN, ENOBUFS)
CALL(sd_bus_message_append, ENOMEM)
CALL(sd_bus_message_append_basic, ENOMEM)
CALL(sd_bus_message_append_string_space, ENOMEM)
CALL(sd_bus_message_open_container, ENOMEM)
CALL(sd_bus_message_close_container, ENOMEM)
CALL(sd_bus_message_enter_container, EBADMSG, ENOMEM)
CALL(sd_bus_message_exit_container, EBADMSG)
CALL(sd_bus_message_peek_type, EBADMSG, ENOMEM)
CALL(sd_bus_message_read_basic, EBADMSG)
CALL(sd_bus_message_new_method_call, ENOMEM, ENOTCONN)
CALL(sd_bus_message_new_method_return, ENOMEM)

#define TOLD(name, made_up)                                                \
    extern "C" long Hook_##name(long database) __asm__(#name);             \
    long Hook_##name(long database) {                                      \
        REAL(name);                                                        \
        return pretended ? static_cast<long>(made_up) : real(database, 0); \
    }

TOLD(sqlite3_errcode, pretended)
TOLD(sqlite3_errmsg, reinterpret_cast<long>(sqlite3_errstr(pretended)))
