// The floor: a dialog of the add-in's size that shows the time and has a button.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTime>
#include <QTimer>

namespace bench {

class TextDialog : public QDialog {
  public:
    TextDialog() {
        setFixedSize(474, 291);
        move(0, 0);  // clear of the add-in's dialog in the middle
        time_.setGeometry(306, 96, 97, 23);
        button_.setGeometry(15, 257, 65, 25);
        clock_.setTimerType(Qt::PreciseTimer);
        connect(&clock_, &QTimer::timeout, this, &TextDialog::ShowTime);
        clock_.start(1000);
        ShowTime();
    }
    QPushButton& Button() { return button_; }

  private:
    void ShowTime() { time_.setText(QTime::currentTime().toString("hh:mm:ss")); }

    QLabel time_{this};
    QPushButton button_{"OK", this};
    QTimer clock_;
};

}  // namespace bench
