// The host's window: the exchanges on the left, what the add-in brings on the right.
#pragma once

#include <QMainWindow>
#include <functional>

#include "host/ExchangeDesk.h"
#include "host/HostView.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace switchdesk {

class MainWindow : public QMainWindow, public HostView {
  public:
    struct Actions {
        std::function<void(const platform::Text& exchange)> open;
        std::function<void()> close;
        std::function<void()> leave;  // the window has been closed
    };
    // `desk` must outlive the window.
    MainWindow(const ExchangeDesk& desk, Actions actions);

    // Brings the clock times of the exchanges up to date.
    void ShowClocks();

    void ShowMessage(const platform::Text& message) override;
    void ShowResults(const platform::Text& caption, const std::vector<Item>& items) override;
    void ShowCode(const platform::Text& code) override;
    void ShowHelp(const platform::Text& file) override;
    void ShowFlow(bool on) override;
    void ShowState(const platform::Text& state, bool open, const platform::Text& exchange) override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* MakeExchangePane();
    QWidget* MakeAnswerPane();
    void FillExchanges();
    void OpenSelected();
    void Select(const platform::Text& exchange);
    void EnableButtons();

    const ExchangeDesk& desk_;
    Actions actions_;
    bool addInOpen_ = false;
    QTableWidget* exchanges_;
    QTableWidget* results_;
    QPlainTextEdit* messages_;
    QLabel* caption_;
    QLabel* code_;
    QLabel* state_;
    QLabel* flow_;
    QPushButton* open_;
    QPushButton* close_;
};

}  // namespace switchdesk
