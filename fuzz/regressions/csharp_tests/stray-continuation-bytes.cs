—ÿÿ x = api.CallMethod<int>(@"//Bob's Sign", "Count");
