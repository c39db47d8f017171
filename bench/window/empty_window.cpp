// A window with nothing in it: what any program of this toolkit costs.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle("Empty window");
    window.resize(1256, 964);
    window.show();
    return QApplication::exec();
}
