// The text dialog alone.
#include "TextDialog.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    bench::TextDialog dialog;
    dialog.show();
    return application.exec();
}
