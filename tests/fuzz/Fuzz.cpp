// What the fuzzers try: FUZZ_TARGET names the routine that gets each input. A fault is whatever ends the
// process: a crash, a sanitizer, or Require.
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <sstream>

#include "harness/Cases.h"
#include "platform/automation/Introspection.h"
#include "platform/automation/dbus/Wire.h"
#include "platform/data/Dialect.h"
#include "platform/desktop/IniSettings.h"
#include "platform/runtime/Date.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/Value.h"

namespace {

using namespace platform;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Texts that are read as dates and numbers, one a line.
void TryDates(std::string_view input) {
    std::istringstream lines{std::string(input)};
    for (std::string line; std::getline(lines, line);) {
        const Text text = FromUtf8(line);
        ErrorOf([&] {
            const Date date = DateOfText(text);
            Require(std::abs(MakeDate(PartsOf(date)).days - date.days) < 1e-4, "the parts of a date make it");
        });
        ErrorOf([&] { Value(text).ToInteger(); });
    }
}

void TryDialect(std::string_view input) {
    const Text query = ToSqliteDialect(FromUtf8(input));
    Require(ToSqliteDialect(query) == query, "what SQLite reads is left as it is");
    WithRowNumber(query, u"rowid");
}

void TryPaths(std::string_view input) {
    const Text text = FromUtf8(input);
    const std::filesystem::path path = RealPath(text);
    if (path.is_absolute()) {
        for (const auto& component : path) Require(component != "..", "no step upwards is left");
        Require(RealPath(PathText(path)) == path, "a real path stays what it is");
    }
    Dir(text);
}

void TrySettings(std::string_view input) {
    const Text section = u"VELMORA32/10001", key = u"InstallPath";
    const auto value = IniValue(input, section, key);
    Require(!value || value->find(u'\n') == value->npos, "a value is a part of one line");
    const std::string more = std::string(input) + "\n[VELMORA32/10001]\nInstallPath=\\SOMEWHERE\\\n";
    Require(IniValue(more, section, key) == value.value_or(u"\\SOMEWHERE\\"), "the first value counts");
}

MessageRef MakeMessage() {
    static sd_bus* const bus = [] {
        sd_bus* created = nullptr;
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) < 0 ||
            sd_bus_new(&created) < 0 || sd_bus_set_fd(created, ends[0], ends[0]) < 0 ||
            sd_bus_start(created) < 0)
            std::abort();
        return created;
    }();
    sd_bus_message* message = nullptr;
    Require(sd_bus_message_new_method_call(bus, &message, nullptr, "/Object/1", "a.b", "Invoke") >= 0,
            "there are messages");
    return Adopted(message);
}

// Takes the first bytes off the recipe, with noughts in place of those that are missing.
std::string Take(std::string_view& recipe, std::size_t count) {
    std::string taken(recipe.substr(0, count));
    recipe.remove_prefix(taken.size());
    taken.resize(count);
    return taken;
}

std::uint8_t TakeByte(std::string_view& recipe) {
    return static_cast<std::uint8_t>(Take(recipe, 1).front());
}

// The content of one shape. A message that the library refuses a part of is not sent.
void Append(sd_bus_message* message, const std::string& shape, std::string_view& recipe, int depth) {
    constexpr const char* inside[] = {"s", "n", "i",   "x",   "t",    "u",  "q",     "y",
                                      "b", "d", "(d)", "(y)", "(so)", "ai", "a{sv}", "v"};
    const auto contain = [&](char type, const std::string& content, bool isFilled) {
        sd_bus_message_open_container(message, type, content.c_str());
        if (isFilled) Append(message, content, recipe, depth + 1);
        sd_bus_message_close_container(message);
    };
    if (shape.starts_with('(')) return contain('r', shape.substr(1, shape.size() - 2), true);
    if (shape.starts_with('a')) return contain('a', shape.substr(1), false);
    for (const char type : shape) {
        if (type == 'v') {
            contain('v', depth > 8 ? "n" : inside[TakeByte(recipe) % std::size(inside)], true);
        } else if (type == 's' || type == 'o') {
            const std::string text = (type == 'o' ? "/" : "") + Take(recipe, TakeByte(recipe));
            sd_bus_message_append_basic(message, type, text.c_str());
        } else {
            sd_bus_message_append_basic(message, type, Take(recipe, sizeof(std::uint64_t)).data());
        }
    }
}

// A value off the wire; the input is a recipe for the content of a message, of any shape that the bus allows.
// What was read can be sent again and is read the same.
void TryWire(std::string_view recipe) {
    const std::uint8_t how = TakeByte(recipe);
    const auto kind = static_cast<ValueType>(how % 10);
    const MessageRef message = MakeMessage();
    Append(message.get(), how & 16 ? std::string(SignatureOf(kind)) : "v", recipe, 0);
    if (sd_bus_message_seal(message.get(), 1, 0) < 0) return;
    for (const ValueType type : {kind, ValueType::Variant}) {
        const auto read = [type](sd_bus_message* from) {
            return ReadTyped(from, type, [](const Address&) { return ObjectRef(); });
        };
        sd_bus_message_rewind(message.get(), 1);
        Value value;
        if (ErrorOf([&] { value = read(message.get()); }) != 0) continue;
        const MessageRef copy = MakeMessage();
        AppendTyped(copy.get(), value, type, [](const ObjectRef&) { return Address{"", "/"}; });
        Require(sd_bus_message_seal(copy.get(), 1, 0) >= 0, "what was read can be sent");
        Require(read(copy.get()) == value || !(value == value), "a value travels unchanged");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::map<std::string, void (*)(std::string_view)> targets = {{"dates", TryDates},
                                                                              {"dialect", TryDialect},
                                                                              {"paths", TryPaths},
                                                                              {"settings", TrySettings},
                                                                              {"wire", TryWire}};
    static const auto target = targets.at(std::getenv("FUZZ_TARGET"));
    target({reinterpret_cast<const char*>(data), size});
    return 0;
}
