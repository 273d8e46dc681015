// The add-in on a platform without a machine, with everybody around it: the operator, two clients, the clock.
#pragma once

#include <list>

#include "exchange/dlgAddin.h"
#include "harness/SmallTexts.h"
#include "model/Answer.h"
#include "model/Judge.h"
#include "model/Step.h"
#include "platform/headless/Headless.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

namespace model {

class World {
  public:
    // A host has created the class, registered its exchange and shown the dialog.
    World();
    ~World();

    // Takes the steps one after the other. While a call or a box is held open, the steps that follow are
    // taken inside it. In the end all that is held goes on, the host answers, the clients let go. Raises
    // Broken where something came otherwise than it must.
    void Run(const std::vector<Step>& steps);

    // What was seen, for whoever reads about a failure.
    const std::string& Log() const { return log_; }

  private:
    struct Ended {};
    struct Frame {
        bool isBox = false, isDone = false;
    };
    struct Party;  // another process: the host, or the second client

    void Start();
    void Settle();
    void LookUpOnce();
    bool TakeNext();
    void StayInside(bool isBox);
    void CloseFrame(bool isBox);
    void WhileBoxIsOpen();

    void Take(const Step& step);
    void Operate(const Step& step);
    void ChangeClock(const Step& step, bool takes);
    void AskForTopic(bool takes);
    void ActAsHost(const Step& step);
    void UseLayer(const Step& step);
    void WakeHost();
    void ChangeMachine(const Step& step);

    void Create(Party& party);
    void Release(Party& party, std::size_t index);
    void Register(Party& party, const platform::Text& name);
    void Show(bool visible);
    void Die(bool isKept);
    void Replace(std::unique_ptr<Party>& party);
    bool IsDead(const void* host) const;
    void Deliver(AnswerKind kind, LoginKind login);
    void ReadBegins(const Answer& answer, std::string_view member);

    platform::Value Called(Party& party, std::string_view member, platform::Arguments& arguments);
    platform::Value Answered(Party& party, std::string_view member, const platform::Arguments& arguments,
                             model::Reply reply);
    platform::Value ResultOf(Party& party, std::string_view member, const platform::Arguments& arguments,
                             model::Reply reply);
    void Arrive(const Party& party, std::string_view member, const platform::Arguments& arguments,
                bool isPosted);
    void WaitForRetry(int milliseconds);
    // Keeps a call out where that is wanted.
    void MayHold(std::string_view member);
    model::Reply TakeReply(std::string_view member);

    // What the dialog shows of date and time.
    struct ShownTime {
        std::array<int, 3> date;
        std::array<Text, 4> time;
        friend bool operator==(const ShownTime&, const ShownTime&) = default;
        ShownClock AsSent() const;
        std::string Words() const;
        void Step(int section, bool up);
    };
    ShownTime Shown();
    std::array<int, 3> Today(int secondsAgo) const;
    std::array<Text, 4> TimeOfDay(int secondsAgo) const;
    void Pass(int milliseconds);
    void CheckTracking();
    void CheckButtons();
    void Look();
    void Note(const std::string& line);

    platform::headless::Window* Window() const { return headless_.toolkit.Open(); }
    platform::headless::Window* Operable() const;
    horalink::dlgAddin& Dialog() const { return main_->Dialog(); }

    platform::headless::Headless headless_;
    harness::MemoryDatabases databases_;
    horalink::Services services_;
    std::unique_ptr<horalink::AddInMain> main_;
    std::unique_ptr<horalink::ServerLife> life_;
    std::unique_ptr<Party> host_, other_;
    std::vector<std::unique_ptr<Party>> former_;  // hosts that have died
    std::weak_ptr<platform::Object> client_;      // the dialog, as the host was given it
    Judge judge_;

    const std::vector<Step>* steps_ = nullptr;
    std::size_t next_ = 0;
    std::list<Frame> frames_;
    std::vector<std::pair<std::string, Act>> holds_;
    std::vector<std::pair<std::string, model::Reply>> replies_;
    struct Refused {
        std::size_t depth;
        Party* party;
    };
    std::vector<Refused> refused_;  // calls that were refused as busy
    std::weak_ptr<platform::Object> record_;
    platform::Milliseconds lastChange_{0};  // of the clock, or of what follows it
    int count_ = 0, lastLogin_ = 0, section_ = -1;
    bool isShown_ = false, wasVisible_ = false, wasServed_ = false, isLeaving_ = false;
    std::string log_;
};

}  // namespace model
