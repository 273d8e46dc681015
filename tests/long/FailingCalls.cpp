// Preloaded into the add-in: lets the n-th of certain calls fail, or kills the process ahead of it.
//
// FAILING_CALLS is "FAMILY:N". The families `sqlite` and `bus` are the calls that the add-in makes of SQLite
// and of sd-bus, `file` those by which SQLite changes the disk; the N-th call of the family fails, 0 lets all
// pass. With `kill` the process is killed ahead of the N-th call of `file`, with `full` the disk is full from
// the N-th on. FAILING_CALLS_TRACE is a file that gets the name of each call of the family, with the code
// after that of the one that failed.
//
// Only functions are here that can fail for a reason outside of the program, each with codes that it can
// give.
#include <dlfcn.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
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
        const std::string text = std::getenv("FAILING_CALLS") ? std::getenv("FAILING_CALLS") : "none:0";
        family_ = text.substr(0, text.find(':'));
        number_ = std::strtoul(text.c_str() + family_.size() + 1, nullptr, 10);
        if (const char* file = std::getenv("FAILING_CALLS_TRACE"))
            trace_ = open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        // Programs that this one starts are not meant.
        unsetenv("LD_PRELOAD");
    }

    // The code with which a call has to fail, 0 where it passes.
    int Next(const std::string& family, const char* function, std::initializer_list<int> codes) {
        const bool kills = family_ == "kill", isFull = family_ == "full";
        if (family != (kills || isFull ? "file" : family_)) return 0;
        const bool fails = ++count_ == number_ || (isFull && number_ && count_ > number_);
        const int code = !fails ? 0 : !isFull ? codes.begin()[number_ % codes.size()] : Room(function);
        if (trace_ >= 0 && dprintf(trace_, code ? "%s %d\n" : "%s\n", function, code) < 0) _exit(97);
        if (fails && kills) kill(getpid(), SIGKILL);
        return code;
    }

    // What SQLite has to say of a failure that was made up.
    int pretended = 0;

  private:
    static int Room(const char* function) { return std::strcmp(function, "pwrite64") ? 0 : ENOSPC; }

    std::string family_;
    unsigned long count_ = 0, number_ = 0;
    int trace_ = -1;
};

Plan plan;

// Whether an address lies in a file. SQLite and sd-bus also call themselves, which are no calls of the
// add-in.
bool IsIn(const char* file, const void* caller) {
    Dl_info info{};
    return dladdr(caller, &info) && std::strstr(info.dli_fname, file);
}

int NextOf(const char* name, std::initializer_list<int> codes, const void* caller) {
    const bool isSqlite = !std::strncmp(name, "sqlite3_", 8), isBus = !std::strncmp(name, "sd_bus_", 7);
    const char* family = isSqlite ? "sqlite" : isBus ? "bus" : "file";
    return IsIn(isSqlite || isBus ? "horalink" : "libsqlite3", caller) ? plan.Next(family, name, codes) : 0;
}

// What a function gives that fails with a code: a text is missing then.
long Failed(const char* name, int code) {
    if (!std::strncmp(name, "sd_bus_", 7)) return -code;
    if (std::strncmp(name, "sqlite3_", 8)) return errno = code, -1;
    plan.pretended = code;
    return std::strncmp(name, "sqlite3_column_", 15) ? code : 0;
}

}  // namespace

// Each is called with what the registers hold, whatever its parameters are: the calling conventions of the
// machines that Debian runs on pass six whole numbers or pointers and a floating number that way.
#define REAL(name) \
    static const auto real = reinterpret_cast<long (*)(long, long, ...)>(dlsym(RTLD_NEXT, #name))
#define CALL(name, ...)                                                                                   \
    extern "C" long Hook_##name(long a, long b, long c, long d, long e, long f, double x) __asm__(#name); \
    long Hook_##name(long a, long b, long c, long d, long e, long f, double x) {                          \
        REAL(name);                                                                                       \
        const int code = NextOf(#name, {__VA_ARGS__}, __builtin_return_address(0));                       \
        return code ? Failed(#name, code) : real(a, b, c, d, e, f, x);                                    \
    }

CALL(sqlite3_bind_double, SQLITE_NOMEM)
CALL(sqlite3_bind_int, SQLITE_NOMEM)
CALL(sqlite3_bind_int64, SQLITE_NOMEM)
CALL(sqlite3_bind_null, SQLITE_NOMEM)
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
CALL(ftruncate64, EIO)
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
CALL(sd_bus_message_read, EBADMSG)
CALL(sd_bus_message_read_basic, EBADMSG)
CALL(sd_bus_message_new_method_call, ENOMEM, ENOTCONN)
CALL(sd_bus_message_new_method_error, ENOMEM)
CALL(sd_bus_message_new_method_return, ENOMEM)

#define TOLD(name, made_up)                                                     \
    extern "C" long Hook_##name(long database) __asm__(#name);                  \
    long Hook_##name(long database) {                                           \
        REAL(name);                                                             \
        return plan.pretended ? static_cast<long>(made_up) : real(database, 0); \
    }

TOLD(sqlite3_errcode, plan.pretended)
TOLD(sqlite3_errmsg, reinterpret_cast<std::intptr_t>(sqlite3_errstr(plan.pretended)))
