#include <cstdlib>

#include <gtest/gtest.h>

#include "taskdisplaynames.h"
#include "testenvironment.h"

// The table is one per process and other tests fill it, in whatever order
// they run (shuffled or filtered): these checks run in a fresh process of
// this same program, started by gtest to run this test alone, where nothing
// has filled the table yet.
class TaskDisplayNamesDeathTest : public ::testing::Test
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TaskDisplayNamesDeathTest, LookupBeforeTheTableIsFilledYieldsEmptyTexts)
{
    EXPECT_EXIT(
        {
            const bool empty = taskDisplayNameTable().empty() && taskDisplayName("BuildModel").isEmpty()
                && taskDisplayName("AlignCameras").isEmpty();
            std::exit(empty ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(TaskDisplayNamesDeathTest, FillingAssignsEvenNamesLookedUpBefore)
{
    EXPECT_EXIT(
        {
            const bool before = taskDisplayName("BuildModel").isEmpty();
            initTaskDisplayNames();
            std::exit(before && taskDisplayName("BuildModel") == QStringLiteral("Build Mesh") ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(TaskDisplayNames, LookingUpAnUnknownNameAddsItWithAnEmptyText)
{
    initTaskDisplayNames();
    const std::map<std::string, QString>& table = taskDisplayNameTable();
    ASSERT_EQ(table.count("NoSuchTaskInTheTable"), 0u);
    const std::size_t size = table.size();

    EXPECT_EQ(taskDisplayName("NoSuchTaskInTheTable"), QString());
    ASSERT_EQ(table.count("NoSuchTaskInTheTable"), 1u);
    EXPECT_EQ(table.at("NoSuchTaskInTheTable"), QString());
    EXPECT_EQ(table.size(), size + 1);
    // once in, it stays one entry, and filling the table again leaves it there
    EXPECT_EQ(taskDisplayName("NoSuchTaskInTheTable"), QString());
    initTaskDisplayNames();
    EXPECT_EQ(table.size(), size + 1);
    EXPECT_EQ(table.count("NoSuchTaskInTheTable"), 1u);
    // a known name adds nothing
    EXPECT_EQ(taskDisplayName("BuildModel"), QStringLiteral("Build Mesh"));
    EXPECT_EQ(table.size(), size + 1);
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
