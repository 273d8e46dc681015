// Objects whose members a test writes down where it needs them.
#pragma once

#include "platform/runtime/Object.h"

namespace platform::test {

class ScriptedObject : public Object {
  public:
    explicit ScriptedObject(ClassDescription description) : description_(std::move(description)) {}
    ~ScriptedObject() override { told("freed"); }
    const ClassDescription& Class() const override { return description_; }
    void LastClientLeaves() override { told("leaves"); }
    void LastClientGone() override { told("gone"); }

    // Gets "leaves" and "gone" when the last client does, and "freed" at the end.
    std::function<void(std::string_view)> told = [](std::string_view) {};

  private:
    ClassDescription description_;
};

inline std::shared_ptr<ScriptedObject> Scripted(std::vector<Member> members = {}) {
    return std::make_shared<ScriptedObject>(ClassDescription{"Scripted", std::move(members)});
}

// A method with so many arguments of any kind; `call` takes them and gives a result or nothing.
template <class Function>
Member Method(std::string_view name, std::size_t arguments, Function call) {
    return {name, InvokeKind::Method,
            std::vector<Parameter>(arguments, {"Argument", ValueType::Variant, true}), ValueType::Variant,
            [call](Object&, const Member&, Arguments& given) {
                if constexpr (std::is_void_v<std::invoke_result_t<Function, Arguments&>>)
                    return call(given), Value();
                else
                    return Value(call(given));
            }};
}

inline Member Echo() {
    return Method("Echo", 1, [](Arguments& a) { return a[0]; });
}

}  // namespace platform::test
