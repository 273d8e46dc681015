#include "ScriptedObject.h"

namespace platform::test {

namespace {

class ScriptedBox : public WaitBox {
  public:
    explicit ScriptedBox(int& nowOpen) : nowOpen_(nowOpen) { ++nowOpen_; }
    ~ScriptedBox() override { --nowOpen_; }

  private:
    int& nowOpen_;
};

}  // namespace

Member Method(std::string_view name, std::size_t arguments, std::function<Value(Arguments&)> call) {
    Member member{name, InvokeKind::Method, std::vector<Parameter>(arguments), ValueType::Variant,
                  [call = std::move(call)](Object&, Arguments& given) { return call(given); }};
    for (Parameter& parameter : member.parameters) parameter = {"Argument", ValueType::Variant, true};
    return member;
}

std::unique_ptr<WaitBox> ScriptedBoxes::Open(TextView title, TextView text,
                                             std::function<void(bool)> answered) {
    opened.push_back({Text(title), Text(text), answered});
    auto box = std::make_unique<ScriptedBox>(nowOpen);
    if (decide) answered(decide());
    return box;
}

BusTest::BusTest() {
    server = Connect();
    client = Connect();
    server->ServeClass("Test.cScripted", [this] { return create(); });
}

ObjectRef BusTest::Created(std::vector<Member> members) {
    return Created(std::make_shared<ScriptedObject>(std::move(members)));
}

ObjectRef BusTest::Created(const std::shared_ptr<ScriptedObject>& object) {
    create = [object] { return object; };
    ObjectRef created = client->CreateObject(u"Test.cScripted");
    create = nullptr;
    return created;
}

}  // namespace platform::test
