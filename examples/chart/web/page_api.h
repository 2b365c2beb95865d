// The endpoints that the page asks: views, what lies in them, places, routes. docs/serving.md tells of each.
#pragma once

#include "web/http.h"

HttpAnswer AnswerAbout(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerViewPng(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerView(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerAt(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerPick(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerSearch(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerRoute(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerFind(const HttpRequest& request, Desk& desk);
HttpAnswer AnswerProfile(const HttpRequest& request, Desk& desk);
