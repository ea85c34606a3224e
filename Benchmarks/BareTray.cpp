// A program with nothing but an icon in the tray and a menu: what the toolkit takes by itself.

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argumentCount, char** arguments) {
    const QApplication application(argumentCount, arguments);
    QMenu menu;
    menu.addAction("Quit", [] { QApplication::quit(); });
    QSystemTrayIcon icon(QIcon(QString::fromLocal8Bit(arguments[1])));
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
