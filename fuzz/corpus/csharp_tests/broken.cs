api.Find("unterminated
api.Find(@"x
api.Find<
$"{
