// A user in front of the built program: sees the shipped page's controls, clicks and types.
#pragma once

#include "tests/endtoend/programrun.h"

#include <QJsonObject>
#include <QPoint>

// All input comes from the X server. What is seen is told by a script beside the page's own: where
// the controls are, what they say, and which has the focus. Calls that wait return false when
// nothing came of it within some seconds.
class PageUser
{
public:
    // Before the program is started; run must live longer.
    explicit PageUser(ProgramRun& run);

    // Starts the program, and waits until its page can be used.
    bool start();

    // The page's elements by their ids, as of the last report.
    bool isShown(const QString& id) const;
    bool isEnabled(const QString& id) const;
    QString text(const QString& id) const; // of a field or list, its value
    QString focused() const;
    double textSize() const;               // in CSS pixels
    QPoint place(const QString& id) const; // middle, on the screen

    // Waits until the page says so, in a report made from now on.
    bool sees(const QString& id, const QString& words);
    bool hasFocus(const QString& id);

    // Clicks as soon as the element is there and can be used.
    bool click(const QString& id);
    // Goes there by Tab.
    bool tabTo(const QString& id);
    bool press(const QString& keys); // names of xdotool: "Return", "ctrl+plus"
    bool type(const QString& text);
    // Gives the keyboard to the visible window of that title.
    bool activate(const QString& title = QStringLiteral("Vexa Word"));
    // Names a file in the open dialog that is up, by the keyboard.
    bool nameFile(const QString& path);

    int window = 0; // X window number

private:
    QJsonObject seen() const;
    bool waitForNews(); // until a report has come that was begun after this call

    ProgramRun& program;
};
