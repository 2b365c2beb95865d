// Routes and track systems: the interfaces through which charts and the host exchange them.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_key.h>

/// Point of a route, implemented by the host: a position with a name.
class K7_API K7RoutePoint : public K7LatLon {
 public:
  K7RoutePoint() = default;
  /// Copy the position.
  K7RoutePoint(const K7RoutePoint& other);
  K7RoutePoint& operator=(const K7RoutePoint& other);
  virtual ~K7RoutePoint();

  /// What the point is called; empty for a bare position.
  virtual K7String GetIdent() const = 0;
  /// Key of its record; the no-record key for a point without one.
  virtual K7NavKey GetKey() const = 0;
};

/// Flight route, implemented by the host. A route may be a chain of legs.
class K7_API K7Route {
 public:
  virtual ~K7Route();
  /// The leg after this one; null, also by default, at the end.
  virtual K7Route* GetNextLeg();
  virtual K7String GetName() const = 0;
  virtual int GetPointCount() const = 0;
  /// The i-th point, from 0; it stays the route's. Null outside.
  virtual const K7RoutePoint* GetPoint(int i) const = 0;

 protected:
  K7Route() = default;
  K7Route(const K7Route&) = default;
  K7Route& operator=(const K7Route&) = default;
};

/// Observer of routes: a host overrides the events that it needs, the others do nothing.
class K7_API K7RouteNotifier {
 public:
  virtual ~K7RouteNotifier();
  virtual void OnCurRouteChange();
  /// `isCurrent`: the route that changed is the current one.
  virtual void OnRouteChange(K7Route* route, bool isCurrent);
  /// The route is about to be deleted.
  virtual void OnRouteDelete(K7Route* route);
};

/// Holder of the host's routes. Observers stay their owners'.
class K7_API K7RouteMngr {
 public:
  virtual ~K7RouteMngr();
  /// Null without one. It stays the manager's.
  virtual K7Route* GetCurRoute() = 0;
  virtual void AddNotifier(K7RouteNotifier* notifier) = 0;
  virtual void RemoveNotifier(K7RouteNotifier* notifier) = 0;

 protected:
  K7RouteMngr() = default;
  K7RouteMngr(const K7RouteMngr&) = default;
  K7RouteMngr& operator=(const K7RouteMngr&) = default;
};

/// Organised track system: tracks over an ocean, valid for some hours.
class K7_API K7TrackSystem {
 public:
  virtual ~K7TrackSystem();
  virtual K7String GetName() const = 0;
  virtual int GetTrackCount() const = 0;
  /// The i-th track, from 0; it stays the system's. Null outside.
  virtual K7Route* GetTrack(int i) const = 0;

 protected:
  K7TrackSystem() = default;
  K7TrackSystem(const K7TrackSystem&) = default;
  K7TrackSystem& operator=(const K7TrackSystem&) = default;
};

/// Observer of track systems.
class K7_API K7TrackSystemNotifier {
 public:
  virtual ~K7TrackSystemNotifier();
  virtual void OnTrackSystemUpdate(K7TrackSystem* system);
};

/// Holder of the host's track systems. Observers stay their owners'.
class K7_API K7TrackMngr {
 public:
  virtual ~K7TrackMngr();
  virtual int GetSystemCount() const = 0;
  /// The i-th system, from 0; it stays the manager's. Null outside.
  virtual K7TrackSystem* GetSystem(int i) = 0;
  virtual void AddNotifier(K7TrackSystemNotifier* notifier) = 0;
  virtual void RemoveNotifier(K7TrackSystemNotifier* notifier) = 0;

 protected:
  K7TrackMngr() = default;
  K7TrackMngr(const K7TrackMngr&) = default;
  K7TrackMngr& operator=(const K7TrackMngr&) = default;
};
