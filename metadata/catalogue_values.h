#pragma once
// How the work variables become the text of a row. A Failure means an empty value.
#include "metadata/catalogue_work.h"
#include <QString>

namespace quillane::catalogue {

QString AsRead(const CatalogueWork& work);          ///< the text
QString WholeInteger(const CatalogueWork& work);    ///< the integer, whatever it is
QString IsoRating(const CatalogueWork& work);       ///< the integer, empty below 1
QString FlashTaken(const CatalogueWork& work);      ///< "Yes", "No" or empty
QString MeteringMode(const CatalogueWork& work);    ///< words for the integer
QString LightSource(const CatalogueWork& work);     ///< words for the integer
QString ExposureProgram(const CatalogueWork& work); ///< words for the integer

/// Of the ratio.
QString TwoDecimals(const CatalogueWork& work);   ///< "0.00"
QString OneDecimal(const CatalogueWork& work);    ///< "0.0"
QString FiveDigits(const CatalogueWork& work);    ///< "00000"
QString ThreeAndTwo(const CatalogueWork& work);   ///< "000.00"
QString FStop(const CatalogueWork& work);         ///< "f/" and "0.0"
QString FocusDistance(const CatalogueWork& work); ///< "0.0000" and " Meters"
QString FocalLength(const CatalogueWork& work);   ///< "0.00" and " mm"
QString Altitude(const CatalogueWork& work);      ///< nearest whole number and " Meters"
QString ExposureTime(const CatalogueWork& work);  ///< a fraction and " Second"

/// Of the byte vector.
QString VersionText(const CatalogueWork& work);     ///< "0210" as "2.10", "1234" as "12.34"
QString SubjectLocation(const CatalogueWork& work); ///< two characters with words before them
QString FirstCharacter(const CatalogueWork& work);
QString FirstTwoCharacters(const CatalogueWork& work);
QString FirstByte(const CatalogueWork& work);  ///< as a decimal number
QString CfaPattern(const CatalogueWork& work); ///< two characters with " X " between them
QString ImageSource(const CatalogueWork& work);
QString SensorType(const CatalogueWork& work);
QString GpsVersion(const CatalogueWork& work); ///< sum of four bytes; above 255 it fails

/// Of a reference letter, in either case; any other text gives an empty value.
QString NorthOrSouth(const CatalogueWork& work);
QString EastOrWest(const CatalogueWork& work);
QString SpeedUnit(const CatalogueWork& work); ///< K, M, N
QString TrueOrMagnetic(const CatalogueWork& work);

/// Of a triple. Its third component is element 3 by element 4, not element 4 by element 5.
QString DegreeText(const CatalogueWork& work);      ///< "40 26.0"
QString TimeText(const CatalogueWork& work);        ///< "13:07:00"
QString DestinationText(const CatalogueWork& work); ///< "040.26.00"

} // namespace quillane::catalogue
