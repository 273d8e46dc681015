// Values off the wire: the input is a recipe for the content of a message, of any shape that the bus allows.
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <iterator>

#include "FuzzTarget.h"
#include "platform/automation/Introspection.h"
#include "platform/automation/dbus/Wire.h"

namespace {

using namespace platform;

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
    if (sd_bus_message_new_method_call(bus, &message, nullptr, "/Object/1", "a.b", "Invoke") < 0)
        std::abort();
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
    for (const char type : shape) {
        if (type == 'a') {
            sd_bus_message_open_container(message, 'a', shape.c_str() + 1);
            return void(sd_bus_message_close_container(message));
        }
        if (type == 'v') {
            const char* next = depth > 8 ? "n" : inside[TakeByte(recipe) % std::size(inside)];
            sd_bus_message_open_container(message, 'v', next);
            Append(message, next, recipe, depth + 1);
            sd_bus_message_close_container(message);
        } else if (type == '(') {
            sd_bus_message_open_container(message, 'r', shape.substr(1, shape.size() - 2).c_str());
        } else if (type == ')') {
            sd_bus_message_close_container(message);
        } else if (type == 's' || type == 'o') {
            const std::string text = (type == 'o' ? "/" : "") + Take(recipe, TakeByte(recipe));
            sd_bus_message_append_basic(message, type, text.c_str());
        } else {
            sd_bus_message_append_basic(message, type, Take(recipe, sizeof(std::uint64_t)).data());
        }
    }
}

// What was read can be sent again and is read the same.
void RoundTrip(sd_bus_message* message, ValueType type) {
    const auto read = [type](sd_bus_message* from) {
        return ReadTyped(from, type, [](const Address&) { return ObjectRef(); });
    };
    Value value;
    if (ErrorOf([&] { value = read(message); }) != 0) return;
    const MessageRef copy = MakeMessage();
    AppendTyped(copy.get(), value, type, [](const ObjectRef&) { return Address{"", "/"}; });
    if (sd_bus_message_seal(copy.get(), 1, 0) < 0) std::abort();
    horalink::fuzz::Require(read(copy.get()) == value || !(value == value), "a value travels unchanged");
}

}  // namespace

void horalink::fuzz::Try(std::string_view recipe) {
    const std::uint8_t how = TakeByte(recipe);
    const auto type = static_cast<ValueType>(how % 10);
    const MessageRef message = MakeMessage();
    Append(message.get(), how & 16 ? std::string(SignatureOf(type)) : "v", recipe, 0);
    if (sd_bus_message_seal(message.get(), 1, 0) < 0) return;
    for (const ValueType read : {type, ValueType::Variant}) {
        sd_bus_message_rewind(message.get(), 1);
        RoundTrip(message.get(), read);
    }
}
