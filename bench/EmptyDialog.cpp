// The floor that the add-in is measured against: a dialog of its size with nothing in it.
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
