// What nearly every view file includes, compiled once. A file still includes what it uses.
#pragma once

#include "precompiled_engines.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QFontMetricsF>
#include <QFrame>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyleOption>
#include <QTextLayout>
#include <QTimer>
#include <QWidget>
