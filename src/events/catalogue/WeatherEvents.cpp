#include <kesu/events/KesuWeatherAndForecast.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuWeatherAndForecast::postWeatherRequestedForType(std::int64_t type, std::int64_t days,
                                                         const Attributes& attributes) {
  EventBuilder("WeatherReqType", attributes).integer("wtype", type).integer("nDays", days).post();
}

void KesuWeatherAndForecast::postWeatherHistoricalRequest(double startDate, double endDate,
                                                          const Attributes& attributes) {
  EventBuilder("WeatherHistoricReqType", attributes)
      .seconds("startInterval", startDate)
      .seconds("endInterval", endDate)
      .post();
}

void KesuWeatherAndForecast::postWeatherStationsRequestWithClusterData(const Object& clusterData,
                                                                       const KesuGeoPoint* geoPoint,
                                                                       const Attributes& attributes) {
  EventBuilder("WeatherStationReqType", attributes).asIs("clusterData", clusterData).point(geoPoint).post();
}

void KesuWeatherAndForecast::postWeatherMapLayersRequested(const Object& layerName, const Attributes& attributes) {
  EventBuilder("WeatherMapLayer", attributes).asIs("layerName", layerName).post();
}

void KesuWeatherAndForecast::postWeatherRequestForUVIndexAtPoint(const KesuGeoPoint* point,
                                                                 const Attributes& attributes) {
  EventBuilder("WeatherUVIndex", attributes).point(point).post();
}

void KesuWeatherAndForecast::postWeatherResponseForType(std::int64_t type, const Attributes& attributes) {
  EventBuilder("WeatherResponseForType", attributes).integer("wtype", type).post();
}

void KesuWeatherAndForecast::postWeatherResponseForHistoricalData(const Attributes& attributes) {
  EventBuilder("WeatherResponseForHistorical", attributes).post();
}

void KesuWeatherAndForecast::postWeatherStationResponseData(const Attributes& attributes) {
  EventBuilder("WeatherStationResponse", attributes).post();
}

void KesuWeatherAndForecast::postWeatherMapLayersResponse(const Attributes& attributes) {
  EventBuilder("WeatherMapLayersResponse", attributes).post();
}

void KesuWeatherAndForecast::postWeatherResponseForUVIndex(const Attributes& attributes) {
  EventBuilder("WeatherResponseForUVIndex", attributes).post();
}

void KesuWeatherAndForecast::postForecastRequestForKeywords(const Object& keywords, const Attributes& attributes) {
  EventBuilder("ForecastRequest", attributes).asIs("keywords", keywords).post();
}

void KesuWeatherAndForecast::postForecastResponseForKeywords(const Attributes& attributes) {
  EventBuilder("ForecastResponse", attributes).post();
}

void KesuWeatherAndForecast::postForecastFetch(std::int64_t nDays, const Attributes& attributes) {
  EventBuilder("ForecastFetch", attributes).integer("nDays", nDays).post();
}

void KesuWeatherAndForecast::postForecastFetchResponse(const Attributes& attributes) {
  EventBuilder("ForecastFetchResponse", attributes).post();
}

}  // namespace kesu
