// What nearly every engine file includes, compiled once. A file still includes what it uses.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QUrl>
#include <QVariant>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <vector>
