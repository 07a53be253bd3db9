// The toolkit's commands, in the order they are registered: the first
// table is the module's own registration section (group "ZEPKAPI"), the
// second is added by explicit calls in two groups. A row whose command is
// not built yet has no function and is not registered.
#include "frame/commands.h"

#include "drawing/lisp.h"
#include "drawing/hatchassoc.h"
#include "drawing/poly2d_cmd.h"
#include "frame/callbacks.h"
#include "frame/smallcmds.h"

namespace zepk::frame {

namespace {

// clang-format off
const CommandRow kTable1[] = {
    {u"ZEPKAPI", u"_IPMOFF", u"IPMOFF", 1, nullptr, "Monitors", "turns the point monitor off: runs (ZEPK-PointMonitor)"},
    {u"ZEPKAPI", u"_NewLayer", u"NewLayer", 1, cmdNewLayer, "Small commands", "prompts for a name and makes a layer with colour 2, \"CONTINUOUS\""},
    {u"ZEPKAPI", u"_MyCommand1", u"gzxys", 1, cmdChangeLineColour, "Small commands", "test: picks a line and changes its entity colour"},
    {u"ZEPKAPI", u"_MyCommand2", u"swcs", 1, nullptr, "Small commands", "test: walks a selection"},
    {u"ZEPKAPI", u"_MyCommand3", u"InsB", 1, nullptr, "Small commands", "test"},
    {u"ZEPKAPI", u"sorttest", u"sorttest", 1, cmdSortTest, "Small commands", "test: sorts points, prints \"%0.0f,%0.0f,%0.0f\""},
    {u"ZEPKAPI", u"_MyCommandCPY", u"CPY", 1, nullptr, "Small commands", "test: copies"},
    {u"ZEPKAPI", u"_DUMPLINE", u"DUMPLINE", 1, nullptr, "Joining", "removes duplicate lines"},
    {u"ZEPKAPI", u"HULL", u"HULL", 1, nullptr, "Point sets", "convex hull of a selection"},
    {u"ZEPKAPI", u"PRB", u"PRB", 1, cmdPrb, "Small commands", "timing test: draws lines, prints \"耗时 :%g 秒.\""},
    {u"ZEPKAPI", u"PRB1", u"PRB1", 1, cmdPrb1, "Small commands", "same with a second method"},
    {u"ZEPKAPI", u"_SSC4", u"SSC4", 1, nullptr, "Small commands", "test"},
    {u"ZEPKAPI", u"_SC4", u"SC4", 1, nullptr, "Small commands", "test: writes to \"*Model_Space\""},
    {u"ZEPKAPI", u"_MyDrag", u"MyDrag", 1, nullptr, "Small commands", "test of dragging"},
    {u"ZEPKAPI", u"dict", u"dict", 1, nullptr, "Small commands", "test: prints the \"ACAD_FILTER\" dictionary of a block reference"},
    {u"ZEPKAPI", u"_BlkTest", u"BlkTest", 1, nullptr, "Small commands", "test: inserts block \"AA\""},
    {u"ZEPKAPI", u"NewDwg", u"NewDwg", 0x200003, cmdNewDwg, "Small commands", "test: new drawing"},
    {u"ZEPKAPI", u"filetest", u"filetest", 0x200003, cmdFileTest, "Small commands", "test: writes \"c:\\\\ftest.txt\""},
    {u"ZEPKAPI", u"ToPoTest", u"ToPoTest", 0x200003, nullptr, "Arc-node engine", "test of the arc-node engine from \"c:\\\\test.txt\""},
    {u"ZEPKAPI", u"_CopyBlockFromFile", u"CBF", 0x200003, nullptr, "Blocks, attributes and extended data", "copies a block from a chosen drawing"},
    {u"ZEPKAPI", u"_ImageIn", u"IMG", 0, nullptr, "Images", "inserts a raster image"},
    {u"ZEPKAPI", u"_ImageTest", u"IMT", 0, nullptr, "Images", "test of images; loads \"acIsmui.arx\""},
    {u"ZEPKAPI", u"_Cut2Layout", u"C2Lay", 0, nullptr, "Small commands", "copies a window of model space to a layout viewport"},
    {u"ZEPKAPI", u"_CopyFromBlock", u"CFBLK", 0, nullptr, "Blocks, attributes and extended data", "copies entities out of a block"},
    {u"ZEPKAPI", u"_ITRBLK", u"ITRBLK", 0, nullptr, "Blocks, attributes and extended data", "walks a block"},
    {u"ZEPKAPI", u"_XBCLIP", u"XBCLIP", 0, nullptr, "Block clipping", "adds a clip boundary to a block reference"},
    {u"ZEPKAPI", u"_FILECOPY", u"FCPY", 0, nullptr, "Small commands", "test of file copy to \"c:\\\\aa.txt\""},
    {u"ZEPKAPI", u"_SPL3", u"SPL3", 0, nullptr, "Spline fitting", "test of spline fitting"},
    {u"ZEPKAPI", u"_MyWblock", u"MyWblock", 0, drawing::cmdMyWblock, "Entities, layers and documents", "writes a selection to a drawing file"},
    {u"ZEPKAPI", u"_IntVal", u"IntVal", 0, nullptr, "Small commands", "test: interval of two curves"},
    {u"ZEPKAPI", u"_CASSTRI", u"CASSTRI", 0, nullptr, "Terrain model", "reads a triangle mesh from a file of type \"sjw\""},
    {u"ZEPKAPI", u"_COMM", u"COMM", 0, nullptr, "Real estate", "inserts a common line block"},
    {u"ZEPKAPI", u"_Apper", u"Apper", 0, nullptr, "Real estate", "inserts an appertain line block"},
    {u"ZEPKAPI", u"_General", u"General", 0, nullptr, "Real estate", "inserts a general line block"},
    {u"ZEPKAPI", u"_CalArea", u"CalArea", 0, nullptr, "Real estate", "area of a curve less inner curves"},
    {u"ZEPKAPI", u"_TotalArea", u"TotalArea", 0, nullptr, "Real estate", "total of such areas"},
    {u"ZEPKAPI", u"_RSArea", u"RSArea", 0, nullptr, "Real estate", "area of a household"},
    {u"ZEPKAPI", u"_DEF", u"DEF", 0, nullptr, "Real estate", "automatic definition of a floor"},
    {u"ZEPKAPI", u"_DimTest", u"DimTest", 0, nullptr, "Associative objects", "test of persistent reactors on a dimension"},
    {u"ZEPKAPI", u"_GeTest", u"GeTest", 0, nullptr, "Small commands", "test of geometry on a chosen curve"},
    {u"ZEPKAPI", u"_GeArcTest", u"GeArcTest", 0, nullptr, "Small commands", "test: line and arc intersection"},
    {u"ZEPKAPI", u"_ArcTan", u"ArcTan", 0, nullptr, "Curves", "arc tangent to two curves with a given radius"},
    {u"ZEPKAPI", u"_BBox", u"BBox", 0, nullptr, "Small commands", "box through three points and a place"},
    {u"ZEPKAPI", u"_InsComm", u"InsComm", 0, nullptr, "Blocks, attributes and extended data", "inserts a test block with attributes \"AA\" to \"FF\""},
    {u"ZEPKAPI", u"_ShxTest", u"ShxTest", 0, nullptr, "SHX fonts", "reads a font and prints its heights"},
    {u"ZEPKAPI", u"_Shx2Shp", u"Shx2Shp", 0, nullptr, "SHX fonts", "font to shape source"},
    {u"ZEPKAPI", u"_SLB2SLD", u"Slb2Sld", 0, nullptr, "Slides", "library to slides"},
    {u"ZEPKAPI", u"_KILL", u"KILL", 0, nullptr, "Breaking and splitting", "breaks curves at crossings"},
    {u"ZEPKAPI", u"_KILLB", u"KILLB", 0, nullptr, "Breaking and splitting", "the same with the boundary"},
    {u"ZEPKAPI", u"_InvokeLsp", u"InvokeLsp", 0, invokeLspCommand, "Callbacks, timers and progress", "queues the load of \"c:/test.lsp\""},
    {u"ZEPKAPI", u"_DrawSld", u"DrawSld", 0, nullptr, "Slides", "draws a slide as entities"},
    {u"ZEPKAPI", u"_MakeSld", u"MakeSld", 0, nullptr, "Slides", "makes a slide"},
    {u"ZEPKAPI", u"_PTest", u"PTest", 0, nullptr, "Small commands", "test: converts a point"},
    {u"ZEPKAPI", u"EditBlkBase", u"EBBase", 0, nullptr, "Blocks, attributes and extended data", "moves the base point of a block"},
    {u"ZEPKAPI", u"TT8", u"TT8", 0, nullptr, "Point and polygon predicates", "test of polygon relations"},
    {u"ZEPKAPI", u"TT9", u"TT9", 0, nullptr, "Point and polygon predicates", "timing test of three point-in-polygon methods"},
    {u"ZEPKAPI", u"_DXyz", u"DXyz", 0, nullptr, "Coordinate dimensions", "coordinate dimension"},
};

const CommandRow kTable2[] = {
    {u"ZEPK_ADDENTITY_COMMANDS", u"AddCircle", u"AddCircle", 1, cmdAddCircle, "Small commands", "circle by centre and radius, then by two diameter points"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TTxx", u"TTxx", 1, nullptr, "Small commands", "test: sorts and prints arc angles"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"PJion", u"PJion", 1, nullptr, "Joining", "joins curves"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ZK_HATCHB", u"ZK_HB", 1, drawing::cmdHatchBoundary, "Entities, layers and documents", "boundary of a hatch"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ZKUCS", u"ZKUCS", 1, drawing::cmdZkUcs, "Entities, layers and documents", "makes a named coordinate system from three points"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"2dPl", u"2dPl", 1, drawing::cmd2dPl, "Entities, layers and documents", "two-dimensional polyline by type: the selected polylines (lightweight ones converted) become 2D polylines simple, curve-fit, quadratic or cubic spline"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ss2blk", u"ss2blk", 1, nullptr, "Blocks, attributes and extended data", "selection to a block"},
    {u"ZEPK_CITORS_COMMANDS", u"UnRegZEPK", u"UnRegZEPK", 0, cmdUnRegZepk, "Application", "deletes the application's record from the host's registry"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"CurveBrk", u"CurveBrk", 1, nullptr, "Breaking and splitting", "breaks curves, keywords \"Self Other\""},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SSBRK", u"SSBRK", 1, nullptr, "Breaking and splitting", "breaks a selection"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"CutPoly", u"CutPoly", 1, nullptr, "Breaking and splitting", "cuts a polyline"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ForcedPickon", u"FPON", 1, nullptr, "Monitors", "forced pick on"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ForcedPickoff", u"FPOFF", 1, nullptr, "Monitors", "forced pick off"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"CursorOn", u"CURON", 1, nullptr, "Monitors", "disables system graphics at the cursor"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"CursorOff", u"CUROFF", 1, nullptr, "Monitors", "enables them"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"AddXDATAIPM", u"VIEWXDATA", 1, nullptr, "Monitors", "toggles the extended data tooltip"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"AddATTIPM", u"DYNDISPATTS", 1, nullptr, "Monitors", "toggles the attribute tooltip"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ZKIPM", u"ZKIPM", 1, nullptr, "Monitors", "toggles the citors monitor"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ZKDInfo", u"DInfo", 1, nullptr, "Monitors", "entity information"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TOUPU", u"TOPU", 1, nullptr, "Topology polygons", "builds polygons; registered twice in succession, the second call has no effect"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TOUPU", u"TOPU", 1, nullptr, "Topology polygons", "builds polygons (the second registration of the name, which changes nothing)"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"ZKBPOLY", u"BP", 1, nullptr, "Topology polygons", "boundary polygon at a point"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TOUPUOUT", u"TOPUOUT", 1, nullptr, "Topology polygons", "outer polygons"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_HATCHLOOP", u"HATCHLOOP", 1, drawing::cmdHatchLoop, "Entities, layers and documents", "loops of a hatch as objects"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_HATCHASSOC", u"HATCHASSOC", 1, drawing::cmdHatchAssoc, "Entities, layers and documents", "makes a hatch associative: each loop that has the shape of a selected closed curve gets it as its source"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_BoundaryClip", u"BCLIP", 1, nullptr, "Block clipping", "boundary clip"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SPLINEJION", u"SPLJION", 1, nullptr, "Joining", "joins splines"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_MTBGF", u"MTBGF", 1, drawing::cmdMtbgf, "Entities, layers and documents", "background fill of text"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_RefEd", u"RefEd", 1, nullptr, "Small commands", "copy of an example of the host's, for editing a drawing's references"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_ImportImages", u"ImportImages", 1, nullptr, "Images", "imports images of a folder"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_Access", u"Access", 1, nullptr, "Monitors", "sample of a database read"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TRIANGULATE", u"Tri", 1, nullptr, "Terrain model", "triangulates, keywords \"3dFace Polyline\""},
    {u"ZEPK_ADDENTITY_COMMANDS", u"DGXZZ", u"DGX", 1, nullptr, "Contours", "contours from objects"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_INPT", u"INPT", 1, nullptr, "Point and polygon predicates", "inner point of a boundary"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_SJW", u"SJW", 1, nullptr, "Terrain model", "builds a triangle mesh from points"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_BCSJW", u"BCSJW", 1, nullptr, "Terrain model", "saves a mesh to a file"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"DGXZZ1", u"DGX1", 1, nullptr, "Contours", "contours from a mesh file"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_CDPZ", u"CDPZ", 1, nullptr, "Earthwork", "site levelling"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"_TFJS", u"TFJS", 1, nullptr, "Earthwork", "earthwork"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"QRCODE", u"QR", 1, nullptr, "QR codes", "QR dialog"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"WQ", u"703", 1, nullptr, "Survey entities", "wall"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"JZX", u"701", 1, nullptr, "Survey entities", "boundary line"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"RailWay", u"401", 1, nullptr, "Survey entities", "railway"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"GYX", u"501", 1, nullptr, "Survey entities", "high-voltage line"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"DYX", u"502", 1, nullptr, "Survey entities", "low-voltage line"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"TXX", u"503", 1, nullptr, "Survey entities", "communication line"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SLOPE808", u"808", 1, nullptr, "Survey entities", "slope"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SLOPE809", u"809", 1, nullptr, "Survey entities", "slope"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SLOPE608", u"608", 1, nullptr, "Survey entities", "slope"},
    {u"ZEPK_ADDENTITY_COMMANDS", u"SLOPE609", u"609", 1, nullptr, "Survey entities", "slope"},
    {u"ZEPK_CITORS_COMMANDS", u"Zepk_ADO_ADSKTEST", u"ZEPK_ADSKTEST", 1, nullptr, "Monitors", "toggles the drawing browse monitor"},
    {u"ZEPK_CITORS_COMMANDS", u"RSAUTODEF", u"RSAUTODEF", 1, nullptr, "Real estate", "automatic definition of a floor"},
    {u"ZEPK_CITORS_COMMANDS", u"ZEPK_ALINES", u"ALINES", 0, nullptr, "Associative objects", "two lines tied by reactors"},
    {u"ZEPK_CITORS_COMMANDS", u"ZEPK_ASSOCAREA", u"ASSOCAREA", 0, nullptr, "Associative objects", "area text tied to a curve"},
    {u"ZEPK_CITORS_COMMANDS", u"ZEPK_DimXYZ", u"DimXyz", 0, nullptr, "Associative objects", "associative coordinate dimension"},
    {u"ZEPK_CITORS_COMMANDS", u"ZEPKLOCK", u"XXLOCK", 0, drawing::cmdZepkLock, "Entities, layers and documents", "makes a drawing hard to edit, with a confirmation that it cannot be undone: model space becomes one unnamed block that cannot be exploded"},
    {u"ZEPK_CITORS_COMMANDS", u"WmfOutIn", u"WmfOutIn", 0, nullptr, "WMF tools", "turns objects into a WMF and back"},
    {u"ZEPK_CITORS_COMMANDS", u"BZMJ", u"MJZJ", 0, nullptr, "Real estate", "area annotation"},
    {u"ZEPK_CITORS_COMMANDS", u"BZBMJ", u"BMJZJ", 0, nullptr, "Real estate", "area annotation, second form"},
    {u"ZEPK_CITORS_COMMANDS", u"CXMJ", u"MJ", 0, nullptr, "Real estate", "area query"},
    {u"ZEPK_CITORS_COMMANDS", u"Sld2Slb", u"Sld2Slb", 0, nullptr, "Slides", "slides to a library"},
    {u"ZEPK_CITORS_COMMANDS", u"DUMPENTITY", u"DUMPENT", 0, nullptr, "Joining", "removes duplicate objects"},
    {u"ZEPK_CITORS_COMMANDS", u"AddZEPKPATH", u"AddZEPKPATH", 0, nullptr, "Files, paths and system", "adds the module's folder to the support path"},
    {u"ZEPK_CITORS_COMMANDS", u"Pipe2Shape", u"Pipe2Shape", 0, nullptr, "", "pipeline export"},
    {u"ZEPK_CITORS_COMMANDS", u"Shape2Dwg", u"Shape2Dwg", 0, nullptr, "", "pipeline import"},
};
// clang-format on

}  // namespace

std::span<const CommandRow> commandTable1() { return kTable1; }
std::span<const CommandRow> commandTable2() { return kTable2; }

}  // namespace zepk::frame
