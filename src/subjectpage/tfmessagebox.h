#pragma once

#include <QString>

// The borderless box that shows a long text, such as a memo cell, with a
// title and a close button; built from the form ":/messagebox.ui".
class TFMessageBox
{
public:
    // Modal: returns when the box closes. A box whose form cannot be read is
    // not shown, and only the log says so.
    static void showMsg(const QString &title, const QString &text);
};
