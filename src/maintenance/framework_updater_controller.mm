// The platform's update framework. Built on macOS where the framework is found; not yet tried on that system.
#include "maintenance/updater_controller.h"

#import <Sparkle/Sparkle.h>

/// Tells a function of each change of a key.
@interface KelmKeyObserver : NSObject
@property(nonatomic, copy) void (^changed)(void);
@end

@implementation KelmKeyObserver
- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary*)change
                       context:(void*)context
{
    self.changed();
}
@end

namespace kelm {

namespace {

NSString* const canCheckKey = @"canCheckForUpdates";

class FrameworkUpdaterController final : public UpdaterController
{
public:
    FrameworkUpdaterController()
    {
        controller_ = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                    updaterDelegate:nil
                                                                 userDriverDelegate:nil];
        observer_ = [[KelmKeyObserver alloc] init];
        observer_.changed = ^{ Q_EMIT canCheckForUpdatesChanged(); };
        [controller_.updater addObserver:observer_ forKeyPath:canCheckKey options:0 context:nil];
    }
    ~FrameworkUpdaterController() override { [controller_.updater removeObserver:observer_ forKeyPath:canCheckKey]; }

    bool canCheckForUpdates() const override { return controller_.updater.canCheckForUpdates; }
    void checkForUpdates() override { [controller_ checkForUpdates:nil]; }

private:
    SPUStandardUpdaterController* controller_;
    KelmKeyObserver* observer_;
};

} // namespace

std::unique_ptr<UpdaterController> makeFrameworkUpdaterController()
{
    return std::make_unique<FrameworkUpdaterController>();
}

} // namespace kelm
