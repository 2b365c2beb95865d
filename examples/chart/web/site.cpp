#include "web/site.h"

#include "web/desk.h"
#include "web/geojson.h"
#include "web/page_api.h"
#include "web/tile_answers.h"
#include "web/wms.h"

#include <exception>
#include <new>
#include <string_view>

namespace {

// Those that another program's map would be made of are open; the page's own are not.
constexpr Endpoint ENDPOINTS[] = {
    {"/tiles/", AnswerTile, true},     {"/wms", AnswerWms, true},
    {"/geojson", AnswerGeoJson, true}, {"/api/about.json", AnswerAbout},
    {"/api/at.json", AnswerAt},        {"/api/find.json", AnswerFind},
    {"/api/pick.json", AnswerPick},    {"/api/profile.svg", AnswerProfile},
    {"/api/route.json", AnswerRoute},  {"/api/search.json", AnswerSearch},
    {"/api/view.json", AnswerView},    {"/api/view.png", AnswerViewPng},
};

const Endpoint* FindEndpoint(const std::string& path) {
  const Endpoint* found = nullptr;
  size_t longest = 0;
  for (const Endpoint& endpoint : ENDPOINTS) {
    const std::string_view known = endpoint.path;
    const bool fits = known.ends_with('/') ? path.starts_with(known) : path == known;
    if (!fits || known.size() < longest) continue;
    found = &endpoint;
    longest = known.size();
  }
  return found;
}

bool IsTile(const HttpRequest& request) {
  const Endpoint* const endpoint = FindEndpoint(request.path);
  return endpoint && endpoint->answer == AnswerTile;
}

}  // namespace

std::span<const Endpoint> Endpoints() { return ENDPOINTS; }

std::optional<HttpAnswer> Site::AnswerAtOnce(const HttpRequest& request) {
  static constexpr std::string_view PAGE = "/page/";
  const std::string& path = request.path;
  const HttpAnswer* file = nullptr;
  if (path == "/") file = m_page.Find("index.html");
  if (path == "/favicon.ico" || path == "/robots.txt") file = m_page.Find(path.substr(1));
  if (path.starts_with(PAGE)) file = m_page.Find(path.substr(PAGE.size()));
  if (file) return *file;
  if (IsTile(request)) return TileAtOnce(request, m_data, &m_tiles);
  return FindEndpoint(path) ? std::nullopt : std::optional(Refuse(404, "there is nothing here"));
}

HttpAnswer Site::Answer(const HttpRequest& request, Desk& desk) {
  const Endpoint* const endpoint = FindEndpoint(request.path);
  if (!endpoint) return Refuse(404, "there is nothing here");
  try {
    return endpoint->answer(request, desk);
  } catch (const std::bad_alloc&) {
    return Refuse(500, "out of memory");
  } catch (const std::exception&) {
    // One request's misfortune ends no other's.
    return Refuse(500, "this cannot be answered");
  }
}

std::string Site::WorkKey(const HttpRequest& request) {
  return IsTile(request) ? TileWork(request) : std::string();
}

bool Site::IsOpen(const HttpRequest& request) {
  const Endpoint* const endpoint = FindEndpoint(request.path);
  return endpoint && endpoint->open;
}
