#include "web/wms_capabilities.h"

#include "store/text_1252.h"
#include "web/limits.h"
#include "web/wms_request.h"
#include "web/xml_text.h"

namespace {

std::string Element(const char* name, const std::string& text) {
  return std::string("<") + name + ">" + XmlText(text) + "</" + name + ">\n";
}

std::string Link(const std::string& address) {
  return "<OnlineResource xmlns:xlink=\"http://www.w3.org/1999/xlink\" xlink:type=\"simple\" xlink:href=\"" +
         XmlText(address) + "\"/>\n";
}

std::string Operation(const char* name, std::initializer_list<const char*> formats,
                      const std::string& address) {
  std::string text = std::string("<") + name + ">\n";
  for (const char* const format : formats) text += Element("Format", format);
  return text + "<DCPType><HTTP><Get>" + Link(address + "/wms?") + "</Get></HTTP></DCPType>\n</" + name +
         ">\n";
}

// Those of a layer hold for the layers within it too.
std::string Styles(const Desk& desk) {
  std::string text;
  for (const NamedTheme& theme : desk.Data().Themes())
    text += "<Style>\n" + Element("Name", theme.name) + Element("Title", TitleOf(theme.name)) + "</Style>\n";
  return text;
}

std::string Source(Desk& desk) {
  std::string problem;
  K7String source;
  NavStore* const store = desk.Store(problem);
  if (!store || store->GetSource(source) != 0 || source.IsEmpty()) return {};
  const std::string text = Utf8Of1252(static_cast<const char*>(source));
  return "<Attribution>\n" + Element("Title", text.substr(0, text.find('\n'))) + "</Attribution>\n";
}

// Latitude comes first in EPSG:4326.
constexpr const char* WORLD =
    "<CRS>EPSG:3857</CRS>\n<CRS>EPSG:4326</CRS>\n<CRS>CRS:84</CRS>\n"
    "<EX_GeographicBoundingBox>\n"
    "<westBoundLongitude>-180</westBoundLongitude>\n<eastBoundLongitude>180</eastBoundLongitude>\n"
    "<southBoundLatitude>-90</southBoundLatitude>\n<northBoundLatitude>90</northBoundLatitude>\n"
    "</EX_GeographicBoundingBox>\n"
    "<BoundingBox CRS=\"EPSG:3857\" minx=\"-20037508.342789244\" miny=\"-20037508.342789244\""
    " maxx=\"20037508.342789244\" maxy=\"20037508.342789244\"/>\n"
    "<BoundingBox CRS=\"EPSG:4326\" minx=\"-90\" miny=\"-180\" maxx=\"90\" maxy=\"180\"/>\n"
    "<BoundingBox CRS=\"CRS:84\" minx=\"-180\" miny=\"-90\" maxx=\"180\" maxy=\"90\"/>\n";

}  // namespace

std::string WmsCapabilities(const HttpRequest& request, Desk& desk, std::string& problem) {
  static const char* const TITLE = "Aeronautical charts";
  const std::vector<std::string> layers = WmsLayers(desk, problem);
  const std::string& address = request.origin;
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<WMS_Capabilities version=\"1.3.0\" xmlns=\"http://www.opengis.net/wms\""
      " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
      " xsi:schemaLocation=\"http://www.opengis.net/wms"
      " http://schemas.opengis.net/wms/1.3.0/capabilities_1_3_0.xsd\">\n<Service>\n";
  text += Element("Name", "WMS") + Element("Title", TITLE) + Link(address + "/");
  text += Element("MaxWidth", std::to_string(MAX_SQUARE_SIDE));
  text += Element("MaxHeight", std::to_string(MAX_SQUARE_SIDE));
  text += "</Service>\n<Capability>\n<Request>\n";
  text += Operation("GetCapabilities", {"text/xml"}, address) + Operation("GetMap", {"image/png"}, address);
  text += Operation("GetFeatureInfo", {"text/plain", "text/html", "text/xml", "application/json"}, address);
  text += "</Request>\n<Exception>\n";
  for (const char* const format : {"XML", "INIMAGE", "BLANK"}) text += Element("Format", format);
  text += "</Exception>\n<Layer queryable=\"1\">\n" + Element("Name", WMS_CHART) + Element("Title", TITLE);
  text += WORLD + Source(desk) + Styles(desk);
  for (const std::string& layer : layers)
    text += "<Layer queryable=\"1\">\n" + Element("Name", layer) + Element("Title", TitleOf(layer)) +
            "</Layer>\n";
  return text + "</Layer>\n</Capability>\n</WMS_Capabilities>\n";
}
