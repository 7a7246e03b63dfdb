api.Click(api.Find("//Door"), "//Lamp_2");
