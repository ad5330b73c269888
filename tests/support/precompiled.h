// What nearly every test includes of the toolkit and the language, compiled once for all rooms. Nothing of the project
// stands here: a changed header is to compile the tests that include it, and no others. A file still includes what it
// uses.
#pragma once

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextLayout>
#include <QTimer>
#include <QUrl>
#include <QVariant>
#include <QtTest>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>
