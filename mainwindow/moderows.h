#pragma once

#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "ui_mainwindow.h"

/** What the connections of a mode are made between. */
struct Wiring {
    PAparser* parser;
    Ui::MainWindow& ui;
    MainWindow* window;
};

using Connections = QList<QMetaObject::Connection>;

/** All that tells one mode from another. What only one mode does is in its slots. */
struct ModeRow {
    ModeState state;
    const char* name; ///< as an object inspector shows it
    ModeState parent; ///< the state that it lies in; the machine's own names itself
    ModeCode code; ///< what is reported; None where the states within have codes of their own
    QWidget* (*screen)(const Ui::MainWindow&); ///< what shows; null where the states within have screens
    int menuEntry; ///< a MENUIDX, or noMenuEntry
    const char* word; ///< what the operating-mode file is to hold; null where it is left alone
    Connections (*connected)(const Wiring&); ///< what is connected while it lasts; null for nothing
    void (PAparser::*announced)(); ///< the signal of its source; null for a mode that is no source
    void (MenuForm::*chosen)(); ///< the signal of its menu entry; null for none
    void (MainWindow::*entered)();
    void (MainWindow::*exited)();
};

constexpr int noMenuEntry = -1;

struct ModeRows {
    const ModeRow* first;
    const ModeRow* behindLast;

    const ModeRow* begin() const { return first; }
    const ModeRow* end() const { return behindLast; }
};

/** Every mode, in the order in which their slots are connected. */
ModeRows modeRows();
const ModeRow& modeRow(ModeState state);

/** The modes that have a screen, in the order in which these are hidden at start. */
QList<ModeState> modesWithScreens();

/** The modes that a source or the menu leads to, in the order of their transitions. */
QList<ModeState> sourceModes();
