api.Find(@"//Door
with a line break");
api.Find("/a\tb\0");
