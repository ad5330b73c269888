#include "platform/desktop/view/x11_window.h"

#include <QGuiApplication>
#include <QWidget>

#include <algorithm>
#include <array>

#if QT_CONFIG(xcb)
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>
#endif

namespace kelm::x11 {

using namespace Qt::Literals::StringLiterals;

quint32 timeOfStartupId(QStringView id)
{
    const qsizetype mark = id.lastIndexOf("_TIME"_L1);
    if (mark < 0) {
        return 0;
    }
    bool isNumber = false;
    // Some write times beyond 2^31 as negative numbers.
    const qlonglong time = id.sliced(mark + 5).toLongLong(&isNumber);
    return isNumber ? static_cast<quint32>(time) : 0;
}

#if QT_CONFIG(xcb)

namespace {

/// Marks what asks for something as an ordinary program's wish.
constexpr quint32 fromApplication = 1;
constexpr quint32 allWorkspaces = 0xffffffff;

struct Freed
{
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using Held = std::unique_ptr<Reply, Freed>;

xcb_connection_t* connection()
{
    // Other platforms of the toolkit say that they have a server, and have none.
    const bool isX11 = QGuiApplication::platformName() == "xcb"_L1;
    const auto* application = isX11 ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return application != nullptr ? application->connection() : nullptr;
}

xcb_window_t rootOf(xcb_connection_t* server)
{
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

xcb_atom_t atom(xcb_connection_t* server, const char* name)
{
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(server, 0, quint16(std::strlen(name)), name);
    const Held<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// A property of one number; `missing` where there is none.
quint32 number(xcb_connection_t* server, xcb_window_t window, const char* name, quint32 missing)
{
    const xcb_get_property_cookie_t cookie =
        xcb_get_property(server, 0, window, atom(server, name), XCB_ATOM_CARDINAL, 0, 1);
    const Held<xcb_get_property_reply_t> reply(xcb_get_property_reply(server, cookie, nullptr));
    const bool isThere = reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) == 4;
    return isThere ? *static_cast<const quint32*>(xcb_get_property_value(reply.get())) : missing;
}

/// Asks the window manager for something about a window.
void ask(xcb_connection_t* server, xcb_window_t window, const char* message, const std::array<quint32, 5>& data)
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(server, message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(server, 0, rootOf(server), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(server);
}

/// Says something of a start to all, in messages of twenty bytes the last of which holds a NUL.
void broadcast(xcb_connection_t* server, QByteArray message)
{
    constexpr qsizetype pieceSize = 20;
    message.append('\0');
    const xcb_window_t sender = xcb_generate_id(server);
    xcb_create_window(server, XCB_COPY_FROM_PARENT, sender, rootOf(server), -100, -100, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    for (qsizetype at = 0; at < message.size(); at += pieceSize) {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 8;
        event.window = sender;
        event.type = atom(server, at == 0 ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO");
        const QByteArray piece = message.mid(at, pieceSize);
        std::copy(piece.begin(), piece.end(), event.data.data8);
        xcb_send_event(server, 0, rootOf(server), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&event));
    }
    xcb_destroy_window(server, sender);
    xcb_flush(server);
}

} // namespace

bool moveToCurrentWorkspace(QWidget& window)
{
    xcb_connection_t* server = connection();
    if (server == nullptr) {
        return false;
    }
    const auto id = xcb_window_t(window.winId());
    const quint32 seen = number(server, rootOf(server), "_NET_CURRENT_DESKTOP", allWorkspaces);
    const quint32 itsOwn = number(server, id, "_NET_WM_DESKTOP", allWorkspaces);
    if (seen != allWorkspaces && itsOwn != allWorkspaces && seen != itsOwn) {
        ask(server, id, "_NET_WM_DESKTOP", {seen, fromApplication, 0, 0, 0});
    }
    return true;
}

bool activate(QWidget& window, quint32 time)
{
    xcb_connection_t* server = connection();
    if (server == nullptr) {
        return false;
    }
    ask(server, xcb_window_t(window.winId()), "_NET_ACTIVE_WINDOW", {fromApplication, time, 0, 0, 0});
    return true;
}

bool endStartup(const QString& id)
{
    xcb_connection_t* server = connection();
    if (server == nullptr || id.isEmpty()) {
        return false;
    }
    QByteArray quoted = id.toUtf8();
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    broadcast(server, "remove: ID=\"" + quoted + '"');
    return true;
}

#else

bool moveToCurrentWorkspace(QWidget& /*window*/)
{
    return false;
}

bool activate(QWidget& /*window*/, quint32 /*time*/)
{
    return false;
}

bool endStartup(const QString& /*id*/)
{
    return false;
}

#endif

} // namespace kelm::x11
