#include "platform/automation/Introspection.h"

#include "platform/automation/Names.h"

namespace platform {

namespace {

std::string Annotation(std::string_view name, std::string_view value) {
    return "    <annotation name=\"" + std::string(name) + "\" value=\"" + std::string(value) + "\"/>\n";
}

std::string Argument(std::string_view name, std::string_view signature, std::string_view direction) {
    return "      <arg name=\"" + std::string(name) + "\" type=\"" + std::string(signature) +
           "\" direction=\"" + std::string(direction) + "\"/>\n";
}

std::string MethodXml(const Member& member) {
    std::string xml = "    <method name=\"";
    xml.append(member.IsWrite() ? "Put_" : "").append(member.name).append("\">\n");
    for (const Parameter& parameter : member.parameters)
        xml += Argument(parameter.name, SignatureOf(parameter.type), "in");
    if (member.result != ValueType::None) xml += Argument("Result", SignatureOf(member.result), "out");
    return xml + "    </method>\n";
}

// The other form of a plain property, or null.
const Member* OtherForm(const std::vector<Member>& members, const Member& member) {
    for (const Member& other : members)
        if (&other != &member && !other.IsMethod() && SameMemberName(other.name, member.name)) return &other;
    return nullptr;
}

std::string PropertyXml(const Member& member, const Member* otherForm) {
    const std::string_view access = otherForm ? "readwrite" : member.IsWrite() ? "write" : "read";
    const ValueType type = member.IsWrite() ? member.parameters[0].type : member.result;
    return "    <property name=\"" + std::string(member.name) + "\" type=\"" +
           std::string(SignatureOf(type)) + "\" access=\"" + std::string(access) + "\"/>\n";
}

std::string MemberXml(const std::vector<Member>& members, const Member& member) {
    if (member.IsMethod()) return MethodXml(member);
    const Member* otherForm = OtherForm(members, member);
    if (otherForm && otherForm < &member) return {};
    return PropertyXml(member, otherForm);
}

std::string ClassAnnotations(const ClassDescription& description) {
    const std::string prefix = bus::annotationPrefix;
    return Annotation(prefix + "ClassGuid", description.classGuid) +
           Annotation(prefix + "InterfaceGuid", description.interfaceGuid) +
           Annotation(prefix + "TypeLibrary", description.library->name) +
           Annotation(prefix + "TypeLibraryGuid", description.library->guid) +
           Annotation(prefix + "TypeLibraryVersion", description.library->version);
}

}  // namespace

std::string_view SignatureOf(ValueType type) {
    switch (type) {
        case ValueType::None:
            return "";
        case ValueType::Variant:
            return "v";
        case ValueType::String:
            return "s";
        case ValueType::Integer:
            return "n";
        case ValueType::Long:
            return "i";
        case ValueType::Boolean:
            return "b";
        case ValueType::Single:
        case ValueType::Double:
            return "d";
        case ValueType::Date:
            return "(d)";
        case ValueType::Object:
            return "(so)";
    }
    return "";
}

std::string TypedInterfaceName(const ClassDescription& description) {
    if (!description.library) return {};
    return std::string(description.library->name) + "._" + std::string(description.name);
}

std::string TypedInterfaceXml(const ClassDescription& description) {
    if (!description.library) return {};
    std::string xml = "  <interface name=\"" + TypedInterfaceName(description) + "\">\n";
    for (const Member& member : description.members) xml += MemberXml(description.members, member);
    xml += ClassAnnotations(description);
    // There are no change signals, so clients must not cache values.
    xml += Annotation("org.freedesktop.DBus.Property.EmitsChangedSignal", "false");
    return xml + "  </interface>\n";
}

std::string ObjectInterfaceXml() {
    return "  <interface name=\"" + std::string(bus::objectInterface) +
           "\">\n    <method name=\"Invoke\">\n" + Argument("member", "s", "in") +
           Argument("kind", "q", "in") + Argument("arguments", "av", "in") + Argument("result", "v", "out") +
           Argument("arguments", "av", "out") +
           "    </method>\n    <method name=\"Retain\"/>\n    <method name=\"Release\"/>\n  </interface>\n";
}

std::string FactoryInterfaceXml() {
    return "  <interface name=\"" + std::string(bus::factoryInterface) +
           "\">\n    <method name=\"CreateInstance\">\n" + Argument("object", "(so)", "out") +
           "    </method>\n  </interface>\n";
}

}  // namespace platform
