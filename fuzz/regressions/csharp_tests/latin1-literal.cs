api.Find("//Tür");
