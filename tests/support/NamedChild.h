#pragma once

#include <QWidget>

/// The child of that type and object name; a page without it ends the test program.
template <typename Widget>
[[nodiscard]] Widget *namedChild(const QWidget &page, const char *name)
{
    auto *widget = page.findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("the page has no %s", name);
    return widget;
}
