// Copyright Lodex contributors.
#include "ChildProcess.h"
#include "LodexRun.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	const std::string SampleLevel = std::string(LODEX_SOURCE_DIR) + "/samples/level.json";

	FLodexRun Explore(const std::string& Script, const std::string& Scene = SampleLevel)
	{
		return RunLodex({"explore", "--scene", Scene}, Script);
	}

	/** What the last "show" printed for a list ("Properties" or "Methods"): its title, header, rule and rows. */
	std::string ShownList(const std::string& Out, const std::string& List)
	{
		const std::size_t Start = Out.rfind("\n" + List + "  [");
		return Start == std::string::npos ? "(not shown)" : Out.substr(Start + 1, Out.find("\n\n", Start) - Start);
	}

	/** The line of the last "show" that starts with Field ("SelectedFunction: ..."). */
	std::string ShownField(const std::string& Out, const std::string& Field)
	{
		const std::size_t At = Out.rfind("\n" + Field + ": ");
		if (At == std::string::npos)
		{
			return "(not shown)";
		}
		const std::size_t From = At + Field.size() + 3;
		return Out.substr(From, Out.find('\n', From) - From);
	}

	TEST(LodexExplore, WorkedExamplesFromAPipeLogAndCopyExactlyAsTheEditor)
	{
		const std::string Script = "select door\npick method SetSpeed\nmenu methods\nchoose Lodestring Absolute\n"
								   "pick method GetHits\nmenu methods\nchoose Lodestring Relative\n";
		// The binary reads the lines from a pipe, as `cat script | lodex explore` gives them.
		const FProcessRun Run = ChildProcess::RunLodex({"explore", "--scene", SampleLevel}, {},
			[&Script]
			{
				int Ends[2];
				if (pipe(Ends) == 0 && write(Ends[1], Script.data(), Script.size()) > 0 && close(Ends[1]) == 0)
				{
					dup2(Ends[0], STDIN_FILENO);
				}
			});
		const std::string Menu =
			"> menu methods\n"
			"Context menu of the Methods list\n"
			"└── section \"Veltrane\", heading \"VelTrane\"\n"
			"    └── sub-menu \"Lodestring\", tooltip \"Print the Lodestring reference\", opens on hover\n"
			"        ├── \"Lodestring Relative\" (DetailToolA.DetailCommand1), tooltip \"Print the Lodestring to the "
			"console\"\n"
			"        └── \"Lodestring Absolute\" (DetailToolA.DetailCommand2), tooltip \"Print the Lodestring to the "
			"console\"\n";
		EXPECT_EQ(Printed(Run),
			"> select door\n> pick method SetSpeed\n" + Menu +
				"> choose Lodestring Absolute\n"
				"LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door']\n"
				"LogTemp: Method : void SetSpeed(float NewSpeed, int32 Gear)\n"
				"LogTemp: Sample usage: api.CallMethod(\"/*[@name = 'House']/*[@name = 'Door']\", \"SetSpeed\", new "
				"object[]{float, int32});  //replace types with objects \n"
				"Clipboard: api.CallMethod(\"/*[@name = 'House']/*[@name = 'Door']\", \"SetSpeed\", new "
				"object[]{float, int32}); \n"
				"> pick method GetHits\n" +
				Menu +
				"> choose Lodestring Relative\n"
				"LogTemp: Lodestring : //Door\n"
				"LogTemp: Method : int32 GetHits()\n"
				"LogTemp: Sample usage: int32 var = api.CallMethod<int32>(\"//Door\", \"GetHits\", new object[]{});  "
				"//replace types with objects \n"
				"Clipboard: int32 var = api.CallMethod<int32>(\"//Door\", \"GetHits\", new object[]{}); \n");
	}

	TEST(LodexExplore, PropertyAndObjectTargetsAndNothingWithoutAPick)
	{
		const FLodexRun Run = Explore("select door\nmenu properties\nchoose Lodestring Relative\n"
									  "tree Hinge\npick property RelativeLocation\nmenu properties\n"
									  "choose Lodestring Relative\nmenu tree\nchoose Lodestring Absolute\n");
		EXPECT_EQ(Run.Exit, 0) << Run.Err;
		// Nothing picked in the Properties list: the first choice prints nothing at all.
		EXPECT_TRUE(Contains(Run.Out, "> choose Lodestring Relative\n> tree Hinge\n")) << Run.Out;
		EXPECT_TRUE(Contains(Run.Out,
			"> choose Lodestring Relative\n"
			"LogTemp: Lodestring : //Door/fn:component('Hinge')/@RelativeLocation\n"
			"Clipboard: //Door/fn:component('Hinge')/@RelativeLocation\n"))
			<< Run.Out;
		// The tree's own menu does not change the target: it still describes the property.
		EXPECT_TRUE(Contains(Run.Out,
			"> choose Lodestring Absolute\n"
			"LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')/@RelativeLocation\n"))
			<< Run.Out;

		const FLodexRun Object = Explore("select door\ntree Hinge\nmenu tree\nchoose Lodestring Absolute\n");
		EXPECT_TRUE(Contains(Object.Out,
			"LogTemp: Lodestring : /*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge') \n"
			"Clipboard: /*[@name = 'House']/*[@name = 'Door']/fn:component('Hinge')\n"))
			<< Object.Out;
	}

	TEST(LodexExplore, TypingLocKeepsRelativeLocationAndClearingTheBoxShowsEverythingAgain)
	{
		const FLodexRun Run = Explore("select hinge\nsearch properties loc\nshow\nsearch properties\nshow\n");
		EXPECT_EQ(ShownList(Run.Out.substr(0, Run.Out.rfind("> search properties\n")), "Properties"),
			"Properties  [loc]\n  Type     Name\n  -------  ----------------\n  FVector  RelativeLocation\n");
		EXPECT_EQ(ShownList(Run.Out, "Properties"),
			"Properties  [Search Properties] (hint)\n"
			"  Type                         Name\n"
			"  ---------------------------  --------------------\n"
			"  USceneComponent*             AttachParent\n"
			"  TArray                       AttachChildren\n"
			"  FVector                      RelativeLocation\n"
			"  FRotator                     RelativeRotation\n"
			"  FVector                      RelativeScale3D\n"
			"  uint8                        bVisible\n"
			"  FActorComponentTickFunction  PrimaryComponentTick\n"
			"  TArray                       ComponentTags\n"
			"  uint8                        bAutoActivate\n");
	}

	TEST(LodexExplore, ListViewsLetGoOfARowTheyNoLongerShowAndThePanelHearsIt)
	{
		const FLodexRun Run = Explore("select door\npick method Open\nsearch methods lock\nshow\n"
									  "search methods\nshow\npick method Open\ntree Hinge\nshow\n");
		const std::size_t Second = Run.Out.find("> search methods\n");
		EXPECT_EQ(ShownField(Run.Out.substr(0, Second), "SelectedFunction"), "(none)");
		EXPECT_EQ(
			ShownField(Run.Out.substr(0, Run.Out.find("> pick method Open", Second)), "SelectedFunction"), "(none)");
		// Refilling the lists from the hinge makes new rows: the pick goes too.
		EXPECT_EQ(ShownField(Run.Out, "SelectedFunction"), "(none)");
	}

	TEST(LodexExplore, ATabOpenedAgainStartsFromTheEditorsSelection)
	{
		const FLodexRun Run = Explore("close\nselect lamp\nshow\nopen\nmenu tree\nshow\n");
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err, "lodex: line 3: the Object Explorer tab is closed (\"open\" opens it)\n");
		EXPECT_TRUE(Contains(Run.Out, "(no context menu: no node of the components tree is selected)\n"));
		EXPECT_EQ(ShownField(Run.Out, "SelectedActor"), "Lamp_2");
		EXPECT_EQ(ShownList(Run.Out, "Methods"),
			"Methods  [Search Properties] (hint)\n  Return type  Signature\n  -----------  ---------\n");
	}

	TEST(LodexExplore, ALineThatCannotBeCarriedOutIsReportedAndTheSessionGoesOn)
	{
		const FLodexRun Run =
			Explore("select door\njump\nselect nobody\npick method Fly\nchoose Lodestring Absolute\n"
					"search widgets x\n# a comment\n\nmenu methods\nchoose Lodestring Sideways\nshow\n");
		EXPECT_EQ(Run.Exit, 1);
		EXPECT_EQ(Run.Err,
			"lodex: line 2: unknown action \"jump\" (expected select, tree, search, pick, menu, choose, show, open, "
			"close or help)\n"
			"lodex: line 3: select: no object has the id, name or label 'nobody'\n"
			"lodex: line 4: pick: the Methods list shows no row \"Fly\"\n"
			"lodex: line 5: choose: no context menu is open (\"menu properties\", \"menu methods\" or \"menu tree\" "
			"opens one)\n"
			"lodex: line 6: search: expected \"properties\" or \"methods\", found \"widgets\"\n"
			"lodex: line 10: choose: the open menu has no entry \"Lodestring Sideways\" (it has \"Lodestring "
			"Relative\", \"Lodestring Absolute\")\n");
		EXPECT_EQ(ShownField(Run.Out, "SelectedActor"), "Door");
	}

	TEST(LodexExplore, ABadSceneIsOneLineAndExit1)
	{
		FTempDir Dir;
		const std::string Bad =
			Dir.Write("bad.json", R"({"objects": [], "classes": [{"name": "A", "functions": [{"name": 3}]}]})");
		EXPECT_EQ(Printed(Explore("show\n", Bad)),
			"exit 1: lodex: " + Bad +
				": classes[0] (name 'A'): functions[0]: field 'name' must be a string, found number\n");
	}
}
