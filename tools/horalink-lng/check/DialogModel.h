// The dialog itself, laid out and never shown.
#pragma once

#include "check/CheckedDatabase.h"
#include "exchange/dlgAddin.h"

namespace lng {

class DialogModel {
  public:
    explicit DialogModel(CheckedDatabase& database)
        : engine_(database.Shared()),
          desk_(engine_),
          dialog_(std::make_shared<horalink::dlgAddin>(desk_.Services(), data_)) {}

    platform::forms::Form& Window() { return dialog_->Window(); }
    std::string Name() { return platform::ToUtf8(Window().Name()); }
    platform::headless::Boxes& Boxes() { return desk_.Boxes(); }
    const horalink::Services& Services() const { return desk_.Services(); }

  private:
    OneDatabaseEngine engine_;
    Desk desk_;
    horalink::ModuleData data_;
    std::shared_ptr<horalink::dlgAddin> dialog_;
};

}  // namespace lng
