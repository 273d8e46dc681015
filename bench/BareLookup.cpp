// The floor of a lookup: the text dialog, whose button makes a number of calls between two timer steps and
// then opens a box.
//
//   bare-lookup HOST CALLS
#include <QApplication>
#include <QVBoxLayout>

#include "Bus.h"
#include "Measure.h"
#include "TextDialog.h"

namespace {

constexpr int step = 100;  // milliseconds

void MakeCalls(sd_bus* bus, const bench::Reference& response, int calls) {
    for (; calls > 0; --calls) bench::Invoke(bus, response, "Tag", bench::Read, "av", 0);
}

void OpenBox(QWidget& parent) {
    auto* box = new QDialog(&parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(box);
    auto* button = new QPushButton("OK");
    layout->addWidget(new QLabel("2026/11/18 (Wed)\n13:02:03"));
    layout->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, box, &QDialog::close);
    box->setModal(true);
    box->show();
    box->activateWindow();
}

int Run(int argc, char** argv) {
    const bench::Bus bus = bench::OpenBus();
    const bench::Reference response{argv[1], bench::responsePath};
    QApplication application(argc, argv);
    bench::TextDialog dialog;
    const auto wait = [&](auto then) { QTimer::singleShot(step, Qt::PreciseTimer, &dialog, then); };
    QObject::connect(&dialog.Button(), &QPushButton::clicked, [&] {
        wait([&] {
            MakeCalls(bus.get(), response, std::atoi(argv[2]));
            wait([&] { OpenBox(dialog); });
        });
    });
    dialog.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    return bench::Measure([&] { Run(argc, argv); });
}
