// The floor: a dialog that shows the time and has a button, which opens a box for a moment
// after two timer steps.
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTime>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int step = 100, boxTime = 300;  // milliseconds

void OpenBox(QWidget& parent) {
    auto* box = new QDialog(&parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(new QLabel("2026/11/18 (Wed)\n13:02:03"));
    layout->addWidget(new QPushButton("OK"));
    box->setModal(true);
    box->show();
    QTimer::singleShot(boxTime, box, &QDialog::close);
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
    QPushButton button("OK", &dialog);
    button.setGeometry(15, 257, 65, 25);
    const auto wait = [&](auto then) { QTimer::singleShot(step, Qt::PreciseTimer, &dialog, then); };
    QObject::connect(&button, &QPushButton::clicked, [&] { wait([&] { wait([&] { OpenBox(dialog); }); }); });
    dialog.show();
    return application.exec();
}
