// What nearly every view file includes, compiled once. A file still includes what it uses.
#pragma once

#include "precompiled_core.h"

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
