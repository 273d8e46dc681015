// The floor for the add-in's start: an empty dialog of its size.
#include <QApplication>
#include <QDialog>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QDialog dialog;
    dialog.setFixedSize(474, 291);
    dialog.setWindowTitle("Empty");
    dialog.show();
    return application.exec();
}
