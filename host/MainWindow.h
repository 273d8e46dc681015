// The host's window: exchanges on the left, messages and results on the right.
#pragma once

#include <QCoreApplication>
#include <QMainWindow>
#include <functional>

#include "host/ExchangeDesk.h"
#include "host/Family.h"
#include "host/HostObject.h"

class QActionGroup;
class QLabel;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace switchdesk {

class HelpPage;

class MainWindow : public QMainWindow, public HostView {
    Q_DECLARE_TR_FUNCTIONS(MainWindow)

  public:
    struct Actions {
        std::function<void(const platform::Text& exchange)> open;
        std::function<void()> close;
        std::function<void()> leave;  // the window has been closed
        std::function<void(std::int16_t set)> background;
    };
    // `desk` and `family` must outlive the window.
    MainWindow(const ExchangeDesk& desk, const Family& family, Actions actions);

    // Fills the menu of backgrounds, and marks the chosen one.
    void OfferBackgrounds(std::int16_t chosen);

    // Updates the list of exchanges.
    void ShowExchanges();
    // Shows a message about an exchange. ShowMessage takes the exchange that is answering, or else the one
    // that the add-in is open for.
    void ShowMessageOf(const platform::Text& exchange, const platform::Text& message);

    void ShowMessage(const platform::Text& message) override;
    void ShowResults(const platform::Text& caption, const std::vector<Item>& items) override;
    void ShowCode(const platform::Text& code) override;
    void ShowHelp(const platform::Text& file) override;
    void ShowState(const platform::Text& words, AddInState state, const platform::Text& exchange) override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* MakeExchangePane();
    QWidget* MakeAnswerPane();
    void AddBackground(const BackgroundSet& set, bool chosen);
    void FillExchanges();
    void ShowExchange(int row, const ExchangeDesk::Named& exchange);
    void OpenSelected();
    void AskThenOpen(const platform::Text& exchange, const platform::Text& awaited);
    const platform::Text& Concerned() const;
    void Select(const platform::Text& exchange);

    const ExchangeDesk& desk_;
    const Family& family_;
    Actions actions_;
    platform::Text openFor_;  // the exchange that the add-in is open for, if it is open
    QMenu* backgrounds_;
    QActionGroup* chosenBackground_;
    HelpPage* help_ = nullptr;
    QTableWidget* exchanges_;
    QTableWidget* results_;
    QPlainTextEdit* messages_;
    QLabel* caption_;
    QLabel* code_;
    QLabel* state_;
    QPushButton* open_;
    QPushButton* close_;
};

}  // namespace switchdesk
