// Copyright Lodex contributors.
#include "BestLocatorLaw.h"
#include "TestGraph.h"

#include "LodexDebugger/Core/Lodestring/LodestringEvaluator.h"
#include "LodexDebugger/Core/Lodestring/LodexBestLocator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
	using EKind = FTestGraph::EKind;

	/**
	 * A level whose walks leave it, as the editor's world gives them: the door hangs under a house of another
	 * level, itself attached to an estate of a third; a bulb's outer is a socket (no step) of a post that no
	 * level lists. The scene lists only the door, its hinge, the bulb and a lamp.
	 */
	class UnlistedParents : public ::testing::Test
	{
	protected:
		/** The scene's objects, made before the index reads them. */
		static FListedTestGraph& MakeScene(FListedTestGraph& Scene)
		{
			FTestGraph::FNode& Estate = Scene.Actor("Estate");
			FTestGraph::FNode& House = Scene.Actor("House", &Estate, {"bldg"});
			FTestGraph::FNode& Door = Scene.Listed(Scene.Actor("Door", &House));
			Scene.Listed(Scene.Add(EKind::Component, "Hinge", &Door));
			FTestGraph::FNode& Post = Scene.Actor("Post");
			FTestGraph::FNode& Socket = Scene.Add(EKind::Other, "Socket", &Post);
			Scene.Listed(Scene.Add(EKind::Component, "Bulb", &Socket));
			Scene.Listed(Scene.Actor("Lamp"));
			return Scene;
		}

		FListedTestGraph Scene;
		const FLodexSceneIndex Index{MakeScene(Scene), Scene};
		const FLodexBestLocatorFinder Finder{Index};
	};

	// Every parent the walks meet is indexed, after the listed roots, in document order with its subtree; the best
	// locator of each object finds it alone.
	TEST_F(UnlistedParents, TheIndexTakesInTheParentsItsWalksMeetAndTheBestLocatorOfEachFindsItAlone)
	{
		std::string Tree;
		for (std::uint32_t Object = 0; Object < Index.Num(); ++Object)
		{
			const std::uint32_t Parent = Index.GetParent(Object);
			const FLodexBestLocator Best = ExpectBestLocatorLaw(Index, Finder, Object, Index.GetName(Object));
			Tree += Index.GetName(Object) + (Index.IsNode(Object) ? "" : " (component)") + " under " +
				(Parent == FLodexSceneIndex::None ? std::string("-") : Index.GetName(Parent)) + ", subtree to " +
				std::to_string(Index.GetSubtreeEnd(Object)) + ": " + Best.Lodestring + " matches " +
				std::to_string(Best.MatchCount) + "\n";
		}
		EXPECT_EQ(Tree,
			"Lamp under -, subtree to 1: /Lamp matches 1\n"
			"Post under -, subtree to 3: /Post matches 1\n"
			"Bulb (component) under Post, subtree to 3: /Post/fn:component('Bulb') matches 1\n"
			"Estate under -, subtree to 7: /Estate matches 1\n"
			"House under Estate, subtree to 7: //*[@tag = 'bldg'] matches 1\n"
			"Door under House, subtree to 7: //Door matches 1\n"
			"Hinge (component) under Door, subtree to 7: //Door/fn:component('Hinge') matches 1\n");
	}
}
