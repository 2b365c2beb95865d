#include "web/api_answer.h"

#include "app_common/position_text.h"

HttpAnswer JsonAnswer(JsonWriter&& json) { return {.type = "application/json", .body = json.Take()}; }

HttpAnswer Problem(int status, const std::string& why) {
  JsonWriter json;
  json.Begin('{').Key("problem").Text(why).End('}');
  HttpAnswer answer = JsonAnswer(std::move(json));
  answer.status = status;
  return answer;
}

void WritePlace(JsonWriter& json, const K7LatLon& place) {
  static const int DECIMALS = 7;  // a centimetre
  json.Key("lat").Number(place.Lat(), DECIMALS).Key("lon").Number(place.Lon(), DECIMALS);
  json.Key("text").Text(PositionText(place, 1));
}
