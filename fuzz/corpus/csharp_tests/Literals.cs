// api.Find("//Hidden") in a comment
/* api.Find("//Hidden"); */
char q = '"'; char e = '\'';
api.Find("a\"b\\c\t\u00FC\x41\U0001F600\uD83D\uDE00\uD800x\0");
api.Find("""//Bob's "Sign" x""");
api.Find(
    """
    //Door
    """);
var s = "//Door"u8; api.Find("//Lamp"u8);
Log($@"a ""quoted"" {api.Find(@"//Door
with a line break")}");
api.Find($"""{api.Find("//x")}""");
