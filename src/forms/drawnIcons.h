#pragma once

#include <QIcon>
#include <QProxyStyle>

/**
 * The icons of the window, drawn anew at each size, so that they are sharp on every screen.
 *
 * Drawn by code and not read from files: for the first icon file, Qt loads every picture format that is installed,
 * which is an eighth of all instructions until the window shows. For the window's thread, with an application object.
 */
namespace DrawnIcons {

QIcon workbench();  ///< Of the program; looks as the one that is installed for the desktop.
QIcon newProject();
QIcon openProject();
QIcon saveProject();
QIcon saveProjectAs();
QIcon addTask();
QIcon deleteTask();
QIcon memoryDisks();

/**
 * The application's style, whatever it is, but for the double arrow of bars with more in them than they can show, which
 * each bar asks for as it is made: Qt's own is a file.
 */
class Style : public QProxyStyle
{
public:
    /// @param style the style that does all else; owned from now on, the application's own if null
    explicit Style(QStyle* style = nullptr) : QProxyStyle(style) {}

    QIcon standardIcon(StandardPixmap which, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
};

}  // namespace DrawnIcons
