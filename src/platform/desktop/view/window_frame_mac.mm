// Not yet tried on that system.
#include "platform/desktop/view/window_frame.h"

#include <QWidget>

#import <AppKit/AppKit.h>

namespace kelm {

void hideTitleBar(QWidget& window)
{
    NSView* view = reinterpret_cast<NSView*>(window.winId());
    NSWindow* frame = view.window;
    frame.titleVisibility = NSWindowTitleHidden;
    frame.titlebarAppearsTransparent = YES;
    frame.styleMask |= NSWindowStyleMaskFullSizeContentView;
}

} // namespace kelm
