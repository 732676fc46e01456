#include "taskdisplaynames.h"

#include <map>

#include <QCoreApplication>

namespace {

std::map<std::string, QString>& table()
{
    static std::map<std::string, QString> names;
    return names;
}

} // namespace

void initTaskDisplayNames()
{
    auto& names = table();
    names["AddPhotos"] = QCoreApplication::translate("Monitor", "Add Photos");
    names["AlignCameras"] = QCoreApplication::translate("Monitor", "Align Photos");
    names["AlignChunks"] = QCoreApplication::translate("Monitor", "Align Chunks");
    names["AnalyzePhotos"] = QCoreApplication::translate("Monitor", "Analyze Photos");
    names["BuildContours"] = QCoreApplication::translate("Monitor", "Build Contours");
    names["BuildDem"] = QCoreApplication::translate("Monitor", "Build DEM");
    names["BuildDenseCloud"] = QCoreApplication::translate("Monitor", "Build Dense Cloud");
    names["BuildModel"] = QCoreApplication::translate("Monitor", "Build Mesh");
    names["BuildOrthomosaic"] = QCoreApplication::translate("Monitor", "Build Orthomosaic");
    names["BuildTexture"] = QCoreApplication::translate("Monitor", "Build Texture");
    names["BuildTiledModel"] = QCoreApplication::translate("Monitor", "Build Tiled Model");
    names["BuildUV"] = QCoreApplication::translate("Monitor", "Build UV");
    names["ClassifyGroundPoints"] = QCoreApplication::translate("Monitor", "Classify Ground Points");
    names["CloseHoles"] = QCoreApplication::translate("Monitor", "Close Holes");
    names["CompactDenseCloud"] = QCoreApplication::translate("Monitor", "Compact Dense Cloud");
    names["DecimateModel"] = QCoreApplication::translate("Monitor", "Decimate Mesh");
    names["DetectMarkers"] = QCoreApplication::translate("Monitor", "Detect Markers");
    names["DuplicateChunk"] = QCoreApplication::translate("Monitor", "Duplicate Chunk");
    names["ExportCameras"] = QCoreApplication::translate("Monitor", "Export Cameras");
    names["ExportContours"] = QCoreApplication::translate("Monitor", "Export Contours");
    names["ExportDem"] = QCoreApplication::translate("Monitor", "Export DEM");
    names["ExportDepth"] = QCoreApplication::translate("Monitor", "Export Depth Map");
    names["ExportMasks"] = QCoreApplication::translate("Monitor", "Export Masks");
    names["ExportMatches"] = QCoreApplication::translate("Monitor", "Export Matches");
    names["ExportModel"] = QCoreApplication::translate("Monitor", "Export Model");
    names["ExportOrthomosaic"] = QCoreApplication::translate("Monitor", "Export Orthomosaic");
    names["ExportOrthophotos"] = QCoreApplication::translate("Monitor", "Export Orthophotos");
    names["ExportPanorama"] = QCoreApplication::translate("Monitor", "Export Panorama");
    names["ExportPoints"] = QCoreApplication::translate("Monitor", "Export Points");
    names["ExportReport"] = QCoreApplication::translate("Monitor", "Export Report");
    names["ExportShapes"] = QCoreApplication::translate("Monitor", "Export Shapes");
    names["ExportTexture"] = QCoreApplication::translate("Monitor", "Export Texture");
    names["ExportTiledModel"] = QCoreApplication::translate("Monitor", "Export Tiled Model");
    names["ImportCameras"] = QCoreApplication::translate("Monitor", "Import Cameras");
    names["ImportDem"] = QCoreApplication::translate("Monitor", "Import Dem");
    names["ImportMasks"] = QCoreApplication::translate("Monitor", "Import Masks");
    names["ImportModel"] = QCoreApplication::translate("Monitor", "Import Model");
    names["ImportShapes"] = QCoreApplication::translate("Monitor", "Import Shapes");
    names["InvertMasks"] = QCoreApplication::translate("Monitor", "Invert Masks");
    names["LoadProject"] = QCoreApplication::translate("Monitor", "Load Project");
    names["MatchPhotos"] = QCoreApplication::translate("Monitor", "Match Photos");
    names["MergeChunks"] = QCoreApplication::translate("Monitor", "Merge Chunks");
    names["OptimizeCameras"] = QCoreApplication::translate("Monitor", "Optimize Alignment");
    names["RefineMarkers"] = QCoreApplication::translate("Monitor", "Refine Markers");
    names["RefinePoints"] = QCoreApplication::translate("Monitor", "Refine Points");
    names["ResetMasks"] = QCoreApplication::translate("Monitor", "Reset Masks");
    names["ResetOrthomosaic"] = QCoreApplication::translate("Monitor", "Reset Orthomosaic");
    names["RunScript"] = QCoreApplication::translate("Monitor", "Run Script");
    names["SaveProject"] = QCoreApplication::translate("Monitor", "Save Project");
    names["SelectDensePoints"] = QCoreApplication::translate("Monitor", "Select Dense Points");
    names["SmoothModel"] = QCoreApplication::translate("Monitor", "Smooth Model");
    names["TrackMarkers"] = QCoreApplication::translate("Monitor", "Track Markers");
    names["TriangulatePoints"] = QCoreApplication::translate("Monitor", "Triangulate Points");
    names["UndistortPhotos"] = QCoreApplication::translate("Monitor", "Undistort Photos");
    names["UpdateOrthomosaic"] = QCoreApplication::translate("Monitor", "Update Orthomosaic");
}

const std::map<std::string, QString>& taskDisplayNameTable()
{
    return table();
}

QString taskDisplayName(const std::string& method)
{
    // operator[] on purpose: unknown names stay in the table with an empty text
    return table()[method];
}
