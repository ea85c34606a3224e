#include "Platform/Desktop/Windows/DesktopProgressWindow.h"

#include <algorithm>

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace platform::desktop {

namespace {

constexpr int fullBar = 1000;
constexpr int width = 380;

QLabel* labelOf(const std::string& text) {
    auto* label = new QLabel(QString::fromStdString(text));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

DesktopProgressWindow::DesktopProgressWindow(const Alert& alert, const std::string& cancelling,
                                             std::function<void()> onCancel)
    : dialog(new QDialog), bar(new QProgressBar) {
    dialog->setWindowTitle("Lumarin");
    dialog->setMinimumWidth(width);
    auto* title = labelOf(alert.messageText);
    auto font = title->font();
    font.setBold(true);
    title->setFont(font);
    bar->setTextVisible(false);
    // Assistive technology says what it is that goes on.
    bar->setAccessibleName(title->text());
    auto* buttons = new QDialogButtonBox;
    const auto& text = alert.buttons.empty() ? cancelling : alert.buttons.back();
    buttons->addButton(QString::fromStdString(text).replace('&', "&&"), QDialogButtonBox::RejectRole);

    auto* column = new QVBoxLayout(dialog);
    column->addWidget(title);
    if (!alert.informativeText.empty())
        column->addWidget(labelOf(alert.informativeText));
    column->addWidget(bar);
    column->addWidget(buttons);
    setFraction(std::nullopt);

    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    // Later: it may well end this window's life.
    QObject::connect(dialog, &QDialog::rejected, dialog, std::move(onCancel), Qt::QueuedConnection);
}

DesktopProgressWindow::~DesktopProgressWindow() {
    dialog->hide();
    dialog->deleteLater();
}

void DesktopProgressWindow::setFraction(std::optional<double> fraction) {
    // A range without a length stands for work whose end nobody knows.
    bar->setRange(0, fraction ? fullBar : 0);
    bar->setValue(fraction ? int(std::clamp(*fraction, 0.0, 1.0) * fullBar) : 0);
}

} // namespace platform::desktop
