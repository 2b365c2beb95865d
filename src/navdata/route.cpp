#include <k7/navdata/route.h>

K7RoutePoint::K7RoutePoint(const K7RoutePoint& other) = default;
K7RoutePoint& K7RoutePoint::operator=(const K7RoutePoint& other) = default;
K7RoutePoint::~K7RoutePoint() = default;

K7Route::~K7Route() = default;
K7Route* K7Route::GetNextLeg() { return nullptr; }

K7RouteNotifier::~K7RouteNotifier() = default;
void K7RouteNotifier::OnCurRouteChange() {}
void K7RouteNotifier::OnRouteChange(K7Route*, bool) {}
void K7RouteNotifier::OnRouteDelete(K7Route*) {}

K7RouteMngr::~K7RouteMngr() = default;

K7TrackSystem::~K7TrackSystem() = default;

K7TrackSystemNotifier::~K7TrackSystemNotifier() = default;
void K7TrackSystemNotifier::OnTrackSystemUpdate(K7TrackSystem*) {}

K7TrackMngr::~K7TrackMngr() = default;
