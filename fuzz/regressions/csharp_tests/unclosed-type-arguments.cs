api.Find<a
api.Find<b
x<d;(@"rU");
