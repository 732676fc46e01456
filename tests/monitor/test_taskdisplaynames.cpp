#include <gtest/gtest.h>

#include "taskdisplaynames.h"
#include "testenvironment.h"

// Runs first (gtest keeps file order): nothing has filled the table yet.
TEST(TaskDisplayNames, LookupBeforeTheTableIsFilledYieldsEmptyTexts)
{
    EXPECT_EQ(taskDisplayName("BuildModel"), QString());
    EXPECT_EQ(taskDisplayName("AlignCameras"), QString());
}

TEST(TaskDisplayNames, FillingAssignsEvenNamesLookedUpBefore)
{
    initTaskDisplayNames();
    EXPECT_EQ(taskDisplayName("BuildModel"), QStringLiteral("Build Mesh"));
}

TEST(TaskDisplayNames, BuildModelIsBuildMeshAndImportDemIsImportDem)
{
    initTaskDisplayNames();
    EXPECT_EQ(taskDisplayName("BuildModel"), QStringLiteral("Build Mesh"));
    EXPECT_EQ(taskDisplayName("ImportDem"), QStringLiteral("Import Dem"));
    EXPECT_EQ(taskDisplayName("BuildDem"), QStringLiteral("Build DEM"));
    EXPECT_EQ(taskDisplayName("ExportDem"), QStringLiteral("Export DEM"));
}

TEST(TaskDisplayNames, LookupIsCaseSensitive)
{
    initTaskDisplayNames();
    EXPECT_EQ(taskDisplayName("buildmodel"), QString());
    EXPECT_EQ(taskDisplayName("BUILDMODEL"), QString());
}

TEST(TaskDisplayNames, UnknownNamesStayUnknown)
{
    initTaskDisplayNames();
    EXPECT_EQ(taskDisplayName("FrobnicateMesh"), QString());
    EXPECT_EQ(taskDisplayName("FrobnicateMesh"), QString());
    EXPECT_EQ(taskDisplayName(""), QString());
}

TEST(TaskDisplayNames, AllFiftyFiveNamesAreExact)
{
    initTaskDisplayNames();
    const std::pair<const char*, const char*> table[] = {
        {"AddPhotos", "Add Photos"},
        {"AlignCameras", "Align Photos"},
        {"AlignChunks", "Align Chunks"},
        {"AnalyzePhotos", "Analyze Photos"},
        {"BuildContours", "Build Contours"},
        {"BuildDem", "Build DEM"},
        {"BuildDenseCloud", "Build Dense Cloud"},
        {"BuildModel", "Build Mesh"},
        {"BuildOrthomosaic", "Build Orthomosaic"},
        {"BuildTexture", "Build Texture"},
        {"BuildTiledModel", "Build Tiled Model"},
        {"BuildUV", "Build UV"},
        {"ClassifyGroundPoints", "Classify Ground Points"},
        {"CloseHoles", "Close Holes"},
        {"CompactDenseCloud", "Compact Dense Cloud"},
        {"DecimateModel", "Decimate Mesh"},
        {"DetectMarkers", "Detect Markers"},
        {"DuplicateChunk", "Duplicate Chunk"},
        {"ExportCameras", "Export Cameras"},
        {"ExportContours", "Export Contours"},
        {"ExportDem", "Export DEM"},
        {"ExportDepth", "Export Depth Map"},
        {"ExportMasks", "Export Masks"},
        {"ExportMatches", "Export Matches"},
        {"ExportModel", "Export Model"},
        {"ExportOrthomosaic", "Export Orthomosaic"},
        {"ExportOrthophotos", "Export Orthophotos"},
        {"ExportPanorama", "Export Panorama"},
        {"ExportPoints", "Export Points"},
        {"ExportReport", "Export Report"},
        {"ExportShapes", "Export Shapes"},
        {"ExportTexture", "Export Texture"},
        {"ExportTiledModel", "Export Tiled Model"},
        {"ImportCameras", "Import Cameras"},
        {"ImportDem", "Import Dem"},
        {"ImportMasks", "Import Masks"},
        {"ImportModel", "Import Model"},
        {"ImportShapes", "Import Shapes"},
        {"InvertMasks", "Invert Masks"},
        {"LoadProject", "Load Project"},
        {"MatchPhotos", "Match Photos"},
        {"MergeChunks", "Merge Chunks"},
        {"OptimizeCameras", "Optimize Alignment"},
        {"RefineMarkers", "Refine Markers"},
        {"RefinePoints", "Refine Points"},
        {"ResetMasks", "Reset Masks"},
        {"ResetOrthomosaic", "Reset Orthomosaic"},
        {"RunScript", "Run Script"},
        {"SaveProject", "Save Project"},
        {"SelectDensePoints", "Select Dense Points"},
        {"SmoothModel", "Smooth Model"},
        {"TrackMarkers", "Track Markers"},
        {"TriangulatePoints", "Triangulate Points"},
        {"UndistortPhotos", "Undistort Photos"},
        {"UpdateOrthomosaic", "Update Orthomosaic"},
    };
    EXPECT_EQ(std::size(table), 55u);
    for (const auto& [method, text] : table)
        EXPECT_EQ(taskDisplayName(method), QString::fromUtf8(text)) << method;
}
