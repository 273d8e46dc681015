#include "model/Step.h"

#include <iterator>

#include "model/Answer.h"

namespace model {

namespace {

struct Kind {
    Act act;
    const char* name;
    int count;   // of values for n
    int weight;  // of each
};

constexpr Kind kinds[] = {
    {Act::Click, "click", 3, 10},
    {Act::Close, "close the window", 1, 3},
    {Act::PressF1, "press F1", 1, 3},
    {Act::Toggle, "toggle", 2, 4},
    {Act::Enter, "enter section", 4, 2},
    {Act::StepTime, "step", 2, 3},
    {Act::ChooseDay, "choose day", 28, 1},
    {Act::TurnTo, "turn to month", int(std::size(months)), 1},
    {Act::AskForTopic, "ask for the topic", 1, 2},
    {Act::CloseBox, "close the box", 1, 25},
    {Act::GiveUp, "give up", 1, 15},
    {Act::KeepWaiting, "keep waiting", 1, 3},
    {Act::Hold, "hold", int(std::size(members)), 3},
    {Act::Hang, "hang in", repliedMembers, 6},
    {Act::AnswerEarly, "answer inside", repliedMembers, 2},
    {Act::GoOn, "go on", 1, 30},
    {Act::Reply, "reply", repliedMembers* replies, 1},
    {Act::CallBack, "call back", answers* logins, 2},
    {Act::Register, "register", int(std::size(exchanges)), 2},
    {Act::Show, "show", 2, 3},
    {Act::SetBackGround, "set background", 4, 1},
    {Act::TurnFlow, "turn flow", 2, 1},
    {Act::Create, "create", 1, 3},
    {Act::CreateOther, "create for another", 1, 6},
    {Act::RegisterOther, "register by another", 1, 0},
    {Act::Release, "release", 2, 2},
    {Act::ReleaseOther, "release of another", 1, 2},
    {Act::Die, "die", 2, 3},
    {Act::GetStuck, "get stuck", 1, 2},
    {Act::Wake, "wake", 1, 3},
    {Act::Pass, "pass", int(std::size(spans)), 20},
    {Act::SetClock, "set the clock", int(std::size(moments)), 1},
    {Act::FailDatabase, "fail the database", 6, 1},
};

const Kind& KindOf(Act act) {
    return kinds[static_cast<std::size_t>(act)];
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Step& step) {
    out << KindOf(step.act).name;
    switch (step.act) {
        case Act::Hold:
        case Act::Hang:
        case Act::AnswerEarly:
            return out << ' ' << members[step.n];
        case Act::Reply: {
            static constexpr const char* texts[] = {"well",  "BUSY",        "ERROR",        "\"\"",
                                                    "\" \"", "by an error", "by an object", "busy just now"};
            return out << " to " << members[step.n / replies] << ' ' << texts[step.n % replies];
        }
        case Act::CallBack:
            return out << ' ' << NameOf(AnswerOf(step.n)) << ", " << NameOf(LoginOf(step.n));
        case Act::Pass:
            return out << ' ' << spans[step.n] << " ms";
        default:
            return KindOf(step.act).count > 1 ? out << ' ' << step.n : out;
    }
}

const std::vector<Step>& AllSteps() {
    static const std::vector<Step> all = [] {
        std::vector<Step> steps;
        for (const Kind& kind : kinds)
            for (int n = 0; n < kind.count; ++n)
                steps.insert(steps.end(), std::size_t(kind.weight), {kind.act, n});
        for (const AnswerKind answer : {AnswerKind::Read, AnswerKind::Set, AnswerKind::Refused})
            steps.insert(steps.end(), 10, {Act::CallBack, Of(answer, LoginKind::Current)});
        return steps;
    }();
    return all;
}

}  // namespace model
