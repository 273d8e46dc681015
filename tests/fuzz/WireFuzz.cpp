// Values off the wire: the input is a recipe for the content of a message, of any shape that the bus allows.
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <cstring>

#include "FuzzTarget.h"
#include "platform/automation/dbus/Wire.h"

namespace {

using namespace platform;

sd_bus* Bus() {
    static sd_bus* bus = [] {
        sd_bus* created = nullptr;
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) < 0 ||
            sd_bus_new(&created) < 0 || sd_bus_set_fd(created, ends[0], ends[0]) < 0 ||
            sd_bus_start(created) < 0)
            std::abort();
        return created;
    }();
    return bus;
}

class Recipe {
  public:
    explicit Recipe(std::string_view bytes) : bytes_(bytes) {}

    std::uint8_t Byte() {
        if (bytes_.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(bytes_.front());
        bytes_.remove_prefix(1);
        return byte;
    }
    template <class Number>
    Number Raw() {
        unsigned char content[sizeof(Number)];
        for (unsigned char& byte : content) byte = Byte();
        Number number;
        std::memcpy(&number, content, sizeof(number));
        return number;
    }
    std::string String() {
        const std::string text(bytes_.substr(0, Byte()));
        bytes_.remove_prefix(std::min(bytes_.size(), text.size()));
        return text.substr(0, text.find('\0'));
    }
    bool IsEmpty() const { return bytes_.empty(); }

  private:
    std::string_view bytes_;
};

void AppendAny(sd_bus_message* message, Recipe& recipe, int depth);

void AppendPair(sd_bus_message* message, Recipe& recipe) {
    const std::string owner = recipe.String(), path = "/" + recipe.String();
    if (!sd_bus_object_path_is_valid(path.c_str())) return AppendAny(message, recipe, 9);
    sd_bus_message_append(message, "v", "(so)", owner.c_str(), path.c_str());
}

void AppendNested(sd_bus_message* message, Recipe& recipe, int depth) {
    if (sd_bus_message_open_container(message, 'v', "v") < 0) return;
    AppendAny(message, recipe, depth + 1);
    sd_bus_message_close_container(message);
}

template <class Number>
void AppendNumber(sd_bus_message* message, const char* type, Recipe& recipe) {
    sd_bus_message_append(message, "v", type, recipe.Raw<Number>());
}

void AppendTruth(sd_bus_message* message, const char* type, Recipe& recipe) {
    sd_bus_message_append(message, "v", type, recipe.Byte() & 1);
}

struct NumberType {
    const char* type;
    void (*append)(sd_bus_message*, const char* type, Recipe&);
};

constexpr NumberType numberTypes[] = {{"n", AppendNumber<std::int16_t>},  {"i", AppendNumber<std::int32_t>},
                                      {"x", AppendNumber<std::int64_t>},  {"t", AppendNumber<std::uint64_t>},
                                      {"u", AppendNumber<std::uint32_t>}, {"q", AppendNumber<std::uint16_t>},
                                      {"y", AppendNumber<std::uint8_t>},  {"b", AppendTruth},
                                      {"d", AppendNumber<double>},        {"(d)", AppendNumber<double>},
                                      {"(y)", AppendNumber<std::uint8_t>}};

// One variant. What the library refuses leaves nothing behind.
void AppendAny(sd_bus_message* message, Recipe& recipe, int depth) {
    const int kind = depth > 8 ? 1 : recipe.Byte() % 16;
    if (kind >= 1 && kind <= 11) {
        const NumberType& number = numberTypes[kind - 1];
        number.append(message, number.type, recipe);
    } else if (kind == 0) {
        sd_bus_message_append(message, "v", "s", recipe.String().c_str());
    } else if (kind == 12) {
        AppendPair(message, recipe);
    } else if (kind == 13) {
        sd_bus_message_append(message, "v", "ai", 2, recipe.Byte(), recipe.Byte());
    } else if (kind == 14) {
        sd_bus_message_append(message, "v", "a{sv}", 0);
    } else {
        AppendNested(message, recipe, depth);
    }
}

MessageRef MakeMessage() {
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_method_call(Bus(), &message, nullptr, "/Object/1", "a.b", "Invoke") < 0)
        std::abort();
    return Adopted(message);
}

ObjectRef NoObject(const Address&) {
    return nullptr;
}

void ReadAs(sd_bus_message* message, std::uint8_t how) {
    try {
        if (how % 16 == 15) {
            ReadAddress(message);
        } else if (how % 2 == 0) {
            ReadVariant(message, NoObject);
        } else {
            ReadTyped(message, static_cast<ValueType>(how % 12), NoObject);
        }
    } catch (const RuntimeError& error) {
        horalink::fuzz::Require(!std::string_view(error.what()).empty(), "an error tells what it is");
    }
}

// What was read can be sent again and is read the same.
void RoundTrip(sd_bus_message* message) {
    Value value;
    try {
        value = ReadVariant(message, NoObject);
    } catch (const RuntimeError&) {
        return;
    }
    const MessageRef copy = MakeMessage();
    AppendVariant(copy.get(), value, [](const ObjectRef&) { return Address{"", "/"}; });
    if (sd_bus_message_seal(copy.get(), 1, 0) < 0) std::abort();
    const Value again = ReadVariant(copy.get(), NoObject);
    horalink::fuzz::Require(again == value || !(value == value), "a value travels unchanged");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Recipe recipe(horalink::fuzz::Bytes(data, size));
    const std::uint8_t how = recipe.Byte();
    const MessageRef message = MakeMessage();
    AppendAny(message.get(), recipe, 0);
    if (sd_bus_message_seal(message.get(), 1, 0) < 0) return 0;
    ReadAs(message.get(), how);
    sd_bus_message_rewind(message.get(), 1);
    RoundTrip(message.get());
    return 0;
}
