// How calls find their member, and what the bus's own interfaces answer.
#include <regex>

#include "BusTest.h"

namespace platform::test {
namespace {

constexpr TypeLibrary library{"TestLibrary", "{library}", "1.0"};
constexpr char typed[] = "TestLibrary._cTyped", properties[] = "org.freedesktop.DBus.Properties";
constexpr char introspectable[] = "org.freedesktop.DBus.Introspectable";

struct TypedInterfaceTest : BusTest {
    std::vector<Member> Members() {
        const auto get = InvokeKind::PropertyGet, put = InvokeKind::PropertyPut;
        const auto none = ValueType::None, string = ValueType::String;
        const Parameter content{"Content", string}, index{"Index", ValueType::Integer};
        const auto write = [this](Object&, Arguments& a) { return tag = a.back().ToText(), Value(); };
        const auto fail = [](Object&, Arguments&) -> Value {
            throw RuntimeError(9, u"out of r\u00E4nge\uFFFF");
        };
        const auto join = [](Object&, Arguments& a) {
            if (a[0].ToText().empty()) throw std::runtime_error("broken");
            return a[0].ToText() + a[1].ToText();
        };
        return {{"Tag", put, {content}, none, write},
                {"Tag", get, {}, string, [this](Object&, Arguments&) { return tag; }},
                {"Item", get, {index}, string, fail},
                {"Item", put, {index, content}, none, write},
                {"ErrCode", get, {}, ValueType::Long, [](Object&, Arguments&) { return -5; }},
                {"Both", InvokeKind::Method, {content, index}, string, join}};
    }
    template <class... Parts>
    std::string Ask(Parts... parts) {
        return stranger.Call(reference, parts...);
    }
    template <class... Parts>
    std::string Invoke(const char* member, int kind, Parts... arguments) {
        return Ask(objectInterface, "Invoke", "sqav", member, kind, arguments...);
    }
    // The values of all attributes in the description of a node, in their order.
    std::string Shown(const char* path) {
        const std::string xml = stranger.Call(Reference{":1.0", path}, introspectable, "Introspect");
        return std::regex_replace(xml, std::regex("=\"([^\"]*)\""), "$1 ",
                                  std::regex_constants::format_no_copy);
    }
    Text tag = u"tag";
    Reference reference = CreateForStranger(std::make_shared<ScriptedObject>(
        ClassDescription{"cTyped", Members(), &library, "{class}", "{interface}"}));
};

TEST_F(TypedInterfaceTest, CallsAreRoutedByPathInterfaceNameAndKind) {
    const Reference hidden = CreateForStranger(Scripted({Echo()})), root{":1.0", "/"};
    const char* late = objectInterface;
    const char* other = "org.example.Other";
    const std::string noInterface = "UnknownInterface i438 ", noMethod = "UnknownMethod i438 ";
    const std::string noProperty = "UnknownProperty i438 ";
    const std::string badArguments = "InvalidArgs i13 wanted are arguments of signature ";
    const std::string common =
        "org.freedesktop.DBus.Peer Ping GetMachineId machine_uuid s out "
        "org.freedesktop.DBus.Introspectable Introspect xml_data s out ";
    const std::pair<std::string, std::string> cases[] = {
        {Invoke("tag", 2, 0), "<'tag'> []"},
        {Invoke("TAG", 4, 1, "s", "late"), "<(y0)> [<'late'>]"},
        {Invoke("Tag", 8, 1, "s", "x"), "<(y0)> [<'x'>]"},
        {Invoke("Tag", 3, 0), "Error i5 kind of call 3"},
        {Invoke("Both", 1, 2, "i", 1, "s", "2"), "<'12'> [<i1> <'2'>]"},
        {Invoke("Both", 1, 2, "s", "", "i", 2), "Error i440 broken"},
        {Invoke("Nobody", 1, 0), "Error i438 cTyped.Nobody"},
        {Ask(late, "Invoke", "sq", "Tag", 2), badArguments + "\"sqav\""},
        {Ask(late, "Retain", "s", ""), badArguments + "\"\""},
        {Ask(late, "Nobody"), noMethod + "Nobody"},
        {Ask(typed, "Both", "sn", "a", 1), "'a1'"},
        {Ask(nullptr, "Both", "sn", "b", 2), "'b2'"},
        {Ask(typed, "Put_Item", "ns", 1, "put"), ""},
        {Ask(nullptr, "Retain"), ""},
        {Ask(nullptr, "Release"), ""},
        {Ask(nullptr, "Get", "ss", typed, "Tag"), "<'put'>"},
        {Ask(properties, "Get", "ss", "", "ErrCode"), "<i-5>"},
        {Ask(properties, "Set", "ssv", "", "Tag", "s", "new"), ""},
        {Ask(nullptr, "GetAll", "s", typed), "[('Tag' <'new'>) ('ErrCode' <i-5>)]"},
        {Ask(properties, "GetAll", "s", late), "[]"},
        {Ask(other, "Nobody"), noInterface + other},
        {stranger.Call(root, late, "Retain"), noInterface + late},
        {stranger.Call(root, nullptr, "Nobody"), noMethod + "Nobody"},
        {stranger.Call(Reference{":1.0", "/Nowhere"}, nullptr, "Retain"), "UnknownObject i462 /Nowhere"},
        {stranger.Call(factory, factoryInterface, "Nobody"), noMethod + "Nobody"},
        {stranger.Call(factory, nullptr, "CreateInstance", "s", ""), badArguments + "\"\""},
        {stranger.Call(factory, other, "CreateInstance"), noInterface + other},
        {Ask(introspectable, "Introspect", "s", ""), badArguments + "\"\""},
        {Ask(typed, "Tag"), noMethod + "Tag"},
        {Ask(typed, "Put_Tag", "s", ""), noMethod + "Put_Tag"},
        {Ask(nullptr, "Nobody"), noMethod + "Nobody"},
        {Ask(typed, "Item", "i", 1), badArguments + "\"n\""},
        {Ask(typed, "Item", "n", 1), "Error i9 out of r\u00E4nge\uFFFD"},
        {Ask(properties, "Nobody", "s", typed), noMethod + "Nobody"},
        {Ask(properties, "Get", "ss", typed, "Item"), noProperty + "Item"},
        {Ask(properties, "Get", "ss", late, "Tag"), noProperty + "Tag"},
        {Ask(properties, "Get", "ss", other, "Tag"), noInterface + other},
        {Ask(properties, "Get", "s", typed), badArguments + "\"ss\""},
        {Ask(properties, "Set", "ssv", typed, "ErrCode", "i", 1), "PropertyReadOnly i383 ErrCode"},
        {Ask(properties, "Set", "ssv", typed, "Nobody", "i", 1), noProperty + "Nobody"},
        {stranger.Call(hidden, properties, "Get", "ss", typed, "Tag"), noInterface + typed},
        {stranger.Call(hidden, nullptr, "Echo"), noMethod + "Echo"},
        {Shown("/"), common + "Factory Object "},
        {Shown("/Object"), common + "1 2 "},
        {Shown("/Factory"), common + "org.velmora.Automation1.Factory CreateInstance object (so) out "},
        {Shown("/Object/1"),
         common + "org.velmora.Automation1.Object Invoke member s in kind q in arguments av in "
                  "result v out arguments av out Retain Release "
                  "org.freedesktop.DBus.Properties Get interface_name s in property_name s in value v out "
                  "Set interface_name s in property_name s in value v in "
                  "GetAll interface_name s in props a{sv} out "
                  "TestLibrary._cTyped Tag s readwrite Item Index n in Result s out "
                  "Put_Item Index n in Content s in ErrCode i read Both Content s in Index n in Result s out "
                  "org.velmora.Automation1.ClassGuid {class} "
                  "org.velmora.Automation1.InterfaceGuid {interface} "
                  "org.velmora.Automation1.TypeLibrary TestLibrary "
                  "org.velmora.Automation1.TypeLibraryGuid {library} "
                  "org.velmora.Automation1.TypeLibraryVersion 1.0 "
                  "org.freedesktop.DBus.Property.EmitsChangedSignal false "}};
    for (const auto& [answer, expected] : cases) EXPECT_EQ(answer, expected);
}

}  // namespace
}  // namespace platform::test
