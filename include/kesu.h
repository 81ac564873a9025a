#pragma once

/// Includes everything that a host needs. Link kesu::kesu.
#include <kesu/Kesu.h>
#include <kesu/Version.h>
#include <kesu/delivery/ConnectionMetrics.h>
#include <kesu/events/Catalogue.h>
#include <kesu/events/KesuCustomEvent.h>
#include <kesu/events/KesuEvent.h>
#include <kesu/events/KesuExplicitActivation.h>
#include <kesu/events/KesuIdentity.h>
#include <kesu/foundation/Exception.h>
#include <kesu/foundation/Value.h>
#include <kesu/message_ui/KesuInAppMessageDelegate.h>
#include <kesu/message_ui/KesuInAppOptions.h>
#include <kesu/messaging/KesuInAppMessageType.h>
#include <kesu/messaging/KesuInAppStatus.h>
#include <kesu/personalization/KesuPersonalizationIntelligence.h>
#include <kesu/platform/ApplicationNotifications.h>
#include <kesu/platform/MainLoop.h>
#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/Platform.h>
#include <kesu/support/CollectionHelpers.h>
#include <kesu/ui/Application.h>
#include <kesu/ui/Containers.h>
#include <kesu/ui/ScreenScope.h>
#include <kesu/ui/ViewController.h>
