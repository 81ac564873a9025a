#pragma once

#include <kesu/Export.h>
#include <kesu/events/KesuGeoPoint.h>
#include <kesu/foundation/Value.h>

#include <cstdint>

namespace kesu {

/// Requests to a weather service, and its answers. A missing point (nullptr) leaves "lat" and "long" out and removes
/// host attributes of these names. <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuWeatherAndForecast {
 public:
  KesuWeatherAndForecast() = delete;

  /// Posts event "WeatherReqType": weather of a type was requested for a number of days. Keys: "wtype", "nDays"
  /// (integer). [KesuWeatherAndForecast postWeatherRequestedForType:forDays:withAttributes:]
  static void postWeatherRequestedForType(std::int64_t type, std::int64_t days, const Attributes& attributes = {});

  /// Posts event "WeatherHistoricReqType": the weather between two dates was requested. Keys: "startInterval",
  /// "endInterval" (seconds). [KesuWeatherAndForecast postWeatherHistoricalRequest:withEndDate:withAttributes:]
  static void postWeatherHistoricalRequest(double startDate, double endDate, const Attributes& attributes = {});

  /// Posts event "WeatherStationReqType": weather stations near a point were requested. Keys: "clusterData" (as is);
  /// "lat", "long" (degrees).
  /// [KesuWeatherAndForecast postWeatherStationsRequestWithClusterData:atGeoPoint:withAttributes:]
  static void postWeatherStationsRequestWithClusterData(const Object& clusterData, const KesuGeoPoint* geoPoint,
                                                        const Attributes& attributes = {});

  /// Posts event "WeatherMapLayer": map layers were requested. Keys: "layerName" (as is).
  /// [KesuWeatherAndForecast postWeatherMapLayersRequested:withAttributes:]
  static void postWeatherMapLayersRequested(const Object& layerName, const Attributes& attributes = {});

  /// Posts event "WeatherUVIndex": the UV index at a point was requested. Keys: "lat", "long" (degrees).
  /// [KesuWeatherAndForecast postWeatherRequestForUVIndexAtPoint:withAttributes:]
  static void postWeatherRequestForUVIndexAtPoint(const KesuGeoPoint* point, const Attributes& attributes = {});

  /// Posts event "WeatherResponseForType": weather of a type was received. Keys: "wtype" (integer).
  /// [KesuWeatherAndForecast postWeatherResponseForType:withAttributes:]
  static void postWeatherResponseForType(std::int64_t type, const Attributes& attributes = {});

  /// Posts event "WeatherResponseForHistorical": the weather between two dates was received. No keys of its own.
  /// [KesuWeatherAndForecast postWeatherResponseForHistoricalData:]
  static void postWeatherResponseForHistoricalData(const Attributes& attributes = {});

  /// Posts event "WeatherStationResponse": weather stations were received. No keys of its own.
  /// [KesuWeatherAndForecast postWeatherStationResponseData:]
  static void postWeatherStationResponseData(const Attributes& attributes = {});

  /// Posts event "WeatherMapLayersResponse": map layers were received. No keys of its own.
  /// [KesuWeatherAndForecast postWeatherMapLayersResponse:]
  static void postWeatherMapLayersResponse(const Attributes& attributes = {});

  /// Posts event "WeatherResponseForUVIndex": the UV index was received. No keys of its own.
  /// [KesuWeatherAndForecast postWeatherResponseForUVIndex:]
  static void postWeatherResponseForUVIndex(const Attributes& attributes = {});

  /// Posts event "ForecastRequest": a forecast for keywords was requested. Keys: "keywords" (as is).
  /// [KesuWeatherAndForecast postForecastRequestForKeywords:withAttributes:]
  static void postForecastRequestForKeywords(const Object& keywords, const Attributes& attributes = {});

  /// Posts event "ForecastResponse": a forecast for keywords was received. No keys of its own.
  /// [KesuWeatherAndForecast postForecastResponseForKeywords:]
  static void postForecastResponseForKeywords(const Attributes& attributes = {});

  /// Posts event "ForecastFetch": a forecast for a number of days was requested. Keys: "nDays" (integer).
  /// [KesuWeatherAndForecast postForecastFetch:withAttributes:]
  static void postForecastFetch(std::int64_t nDays, const Attributes& attributes = {});

  /// Posts event "ForecastFetchResponse": a forecast for a number of days was received. No keys of its own.
  /// [KesuWeatherAndForecast postForecastFetchResponse:]
  static void postForecastFetchResponse(const Attributes& attributes = {});
};

}  // namespace kesu
