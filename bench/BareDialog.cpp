// The floor for the running add-in: a dialog that shows the time, opens a box after a click, and closes it
// when standard input has a character.
#include <unistd.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QSocketNotifier>
#include <QTime>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>

namespace {

std::unique_ptr<QDialog> OpenBox(QWidget& parent) {
    auto box = std::make_unique<QDialog>(&parent);
    auto* layout = new QVBoxLayout(box.get());
    layout->addWidget(new QLabel("2026/11/18 (Wed)\n13:02:03"));
    layout->addWidget(new QPushButton("OK"));
    box->setModal(true);
    box->show();
    return box;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QDialog dialog;
    dialog.setFixedSize(474, 291);
    dialog.move(0, 0);  // clear of the add-in's dialog in the middle
    QLabel time(&dialog);
    time.setGeometry(306, 96, 97, 23);
    const auto show = [&time] { time.setText(QTime::currentTime().toString("hh:mm:ss")); };
    show();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, show);
    timer.start(1000);
    std::unique_ptr<QDialog> box;
    QPushButton button(&dialog);
    button.setGeometry(15, 257, 65, 25);
    QObject::connect(&button, &QPushButton::clicked, [&] {
        QTimer::singleShot(100, Qt::PreciseTimer, &dialog, [&] { box = OpenBox(dialog); });
    });
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char character = 0;
        if (read(STDIN_FILENO, &character, 1) != 1) return QApplication::quit();
        box.reset();
    });
    dialog.show();
    return application.exec();
}
