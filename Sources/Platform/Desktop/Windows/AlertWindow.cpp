#include "Platform/Desktop/Windows/AlertWindow.h"

#include <algorithm>

#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace platform::desktop {

namespace {

// Texts of a line or two are not broken into more.
constexpr int leastWidth = 420;

constexpr int mostHeight = 300;

// A text that is too long for a screen is scrolled.
void boundHeight(QGridLayout& grid, QLabel& text) {
    if (text.heightForWidth(leastWidth) <= mostHeight)
        return;
    auto* scrolled = new QPlainTextEdit(text.text());
    scrolled->setReadOnly(true);
    scrolled->setTabChangesFocus(true);
    scrolled->setFixedHeight(mostHeight);
    grid.replaceWidget(&text, scrolled);
    text.hide();
}

QMessageBox::ButtonRole roleOf(std::size_t place, std::size_t count) {
    if (place == 0)
        return QMessageBox::AcceptRole;
    return place + 1 == count ? QMessageBox::RejectRole : QMessageBox::ActionRole;
}

} // namespace

AlertWindow::AlertWindow(const Alert& alert, const std::string& agreement) {
    setModal(false);
    setWindowTitle("Lumarin");
    setIcon(alert.style == Alert::Style::warning ? Warning : Information);
    setText(QString::fromStdString(alert.messageText));
    setInformativeText(QString::fromStdString(alert.informativeText));
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    for (auto* label : findChildren<QLabel*>())
        // What looks like markup is a person's text all the same.
        label->setTextFormat(Qt::PlainText);
    if (auto* title = findChild<QLabel*>("qt_msgbox_label")) {
        auto font = title->font();
        font.setBold(true);
        title->setFont(font);
    }

    auto titles = alert.buttons;
    if (titles.empty())
        titles.push_back(agreement);
    for (std::size_t place = 0; place < titles.size(); ++place)
        choices.push_back(addButton(QString::fromStdString(titles[place]).replace('&', "&&"),
                                    roleOf(place, titles.size())));
    // It keeps its size to what is in its layout.
    auto* text = findChild<QLabel*>("qt_msgbox_informativelabel");
    if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
        grid->addItem(new QSpacerItem(leastWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
        if (text)
            boundHeight(*grid, *text);
    }
    setDefaultButton(static_cast<QPushButton*>(choices.front()));
    setEscapeButton(choices.back());
    choices.front()->setFocus();
}

bool AlertWindow::says(const Alert& alert) const {
    return text().toStdString() == alert.messageText
           && informativeText().toStdString() == alert.informativeText;
}

std::size_t AlertWindow::choice() const {
    const auto chosen = std::ranges::find(choices, clickedButton());
    return chosen == choices.end() ? choices.size() - 1 : std::size_t(chosen - choices.begin());
}

} // namespace platform::desktop
